#include "platform/signals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

namespace qv3 {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

// A signal handler is given nothing but the number: where to write it must be known to all.
std::atomic<int> writeEnd{-1};
static_assert(std::atomic<int>::is_always_lock_free);

extern "C" void passOn(int number) {
  const int error = errno;
  const auto byte = static_cast<unsigned char>(number);
  // A full pipe holds enough signals to be heard.
  [[maybe_unused]] const auto written = write(writeEnd, &byte, 1);
  errno = error;
}

}  // namespace

void outliveFileSizeLimit() {
  std::signal(SIGXFSZ, SIG_IGN);
}

struct TerminationSignals::Previous {
  std::array<struct sigaction, kSignals.size()> actions{};
};

TerminationSignals::TerminationSignals(std::function<void(int)> received)
    : m_received(std::move(received)), m_previous(std::make_unique<Previous>()) {
  int ends[2];
  if (pipe2(ends, O_NONBLOCK | O_CLOEXEC) != 0) return;
  m_readEnd = ends[0];
  writeEnd = ends[1];
  m_notifier = std::make_unique<QSocketNotifier>(m_readEnd, QSocketNotifier::Read);
  QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                   [this] { deliver(); });

  struct sigaction action {};
  action.sa_handler = passOn;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  for (std::size_t n = 0; n < kSignals.size(); ++n) {
    struct sigaction& previous = m_previous->actions[n];
    sigaction(kSignals[n], nullptr, &previous);
    if (previous.sa_handler != SIG_IGN) sigaction(kSignals[n], &action, nullptr);
  }
}

TerminationSignals::~TerminationSignals() {
  if (!installed()) return;
  for (std::size_t n = 0; n < kSignals.size(); ++n) {
    sigaction(kSignals[n], &m_previous->actions[n], nullptr);
  }
  m_notifier.reset();
  close(m_readEnd);
  close(writeEnd.exchange(-1));
}

void TerminationSignals::deliver() {
  unsigned char number = 0;
  while (read(m_readEnd, &number, 1) == 1) m_received(number);
}

}  // namespace qv3
