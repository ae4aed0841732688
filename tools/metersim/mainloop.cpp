#include "tools/metersim/mainloop.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <iostream>

#include "tools/metersim/clock.h"

namespace qv3::metersim {
namespace {

using std::chrono::milliseconds;

// The longest time in which nothing is looked at: a signal, a terminal left barred.
constexpr Nanos kIdle = milliseconds(100);

constexpr Nanos kDrainStep = milliseconds(5);
constexpr Nanos kDrainLimit = milliseconds(500);

timespec toTimespec(Nanos time) {
  const Nanos positive = std::max(time, Nanos(0));
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(positive);
  timespec result{};
  result.tv_sec = seconds.count();
  result.tv_nsec = (positive - seconds).count();
  return result;
}

}  // namespace

MainLoop::MainLoop(const Options& options, Simulator& simulator)
    : m_options(options), m_simulator(simulator), m_line(options.link, options.backlog) {
  sigemptyset(&m_signals);
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&m_signals, number);
}

std::string MainLoop::open() {
  // Blocked and asked for: so they can neither interrupt a write nor leave the link behind.
  sigprocmask(SIG_BLOCK, &m_signals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  std::string error;
  if (!m_options.log.empty()) error = m_log.open(m_options.log);
  if (error.empty() && !m_options.control.empty()) error = m_control.open(m_options.control);
  if (error.empty()) error = m_line.open();
  return error;
}

int MainLoop::run() {
  announce();
  Effects effects;
  m_simulator.begin(monotonicNow(), effects);
  carryOut(effects);
  while (!m_simulator.finished() && m_status == 0 && !toldToStop()) {
    const Ready ready = wait();
    if (ready.host) hearHost();
    if (ready.control) hearControl();
    Effects due;
    m_simulator.advance(monotonicNow(), due);
    m_line.tidy(monotonicNow());
    carryOut(due);
  }
  drain();
  return m_status;
}

MainLoop::Ready MainLoop::wait() const {
  const Nanos now = monotonicNow();
  const timespec timeout = toTimespec(std::min(m_simulator.due(), now + kIdle) - now);
  std::array<pollfd, 2> files{{{m_line.fd(), POLLIN, 0}, {m_control.fd(), POLLIN, 0}}};
  const bool any = ppoll(files.data(), files.size(), &timeout, nullptr) > 0;
  return {any && files[0].revents != 0, any && files[1].revents != 0};
}

void MainLoop::hearControl() {
  for (const std::string& line : m_control.read()) {
    const CommandResult result = parseCommand(line);
    if (!result.error.empty()) complain(result.error);
    if (!result.command) continue;
    Effects effects;
    m_simulator.obey(*result.command, monotonicNow(), effects);
    carryOut(effects);
  }
}

void MainLoop::hearHost() {
  if (!m_line.isOpen()) return;
  Effects effects;
  m_simulator.hear(m_line.read(), monotonicNow(), effects);
  carryOut(effects);
}

void MainLoop::carryOut(Effects& effects) {
  followLine();
  for (const Effects::Chunk& chunk : effects.chunks) {
    const Nanos now = monotonicNow();
    if (!m_line.write(chunk.characters, now)) remark("the line took no more");
    if (chunk.frame && !m_log.write(now, chunk.characters)) {
      complain("cannot write " + m_options.log);
      m_status = 1;
    }
  }
  for (const std::string& text : effects.remarks) remark(text);
  for (const std::string& text : effects.complaints) complain(text);
}

void MainLoop::followLine() {
  if (m_hangUpsSeen != m_simulator.hangUps()) {
    m_hangUpsSeen = m_simulator.hangUps();
    m_line.hangUp();
  }
  if (!m_simulator.lineUp() || m_line.isOpen() || m_status != 0) return;
  const std::string error = m_line.open();
  if (error.empty()) {
    announce();
  } else {
    complain(error);
    m_status = 1;
  }
}

void MainLoop::announce() const {
  std::cout << m_line.path() << std::endl;
}

// What nobody has read is lost with the terminal, so the host gets a moment. The first look comes
// after a pause, as the terminal hands characters on a little later than it takes them.
void MainLoop::drain() {
  const Nanos end = monotonicNow() + kDrainLimit;
  do {
    const timespec pause = toTimespec(kDrainStep);
    nanosleep(&pause, nullptr);
  } while (!m_line.drained() && monotonicNow() < end);
}

bool MainLoop::toldToStop() const {
  const timespec noWait{};
  return sigtimedwait(&m_signals, nullptr, &noWait) > 0;
}

void MainLoop::remark(const std::string& text) const {
  if (m_options.verbose) std::cerr << "meter-sim: " << text << std::endl;
}

void MainLoop::complain(const std::string& text) const {
  std::cerr << "meter-sim: " << text << std::endl;
}

}  // namespace qv3::metersim
