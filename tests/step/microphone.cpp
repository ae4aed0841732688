#include "tests/step/microphone.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace qv3::test {
namespace {

constexpr std::chrono::milliseconds kPeriod{1};

}  // namespace

Microphone::Microphone(int ppm, const std::string& pipe)
    : m_framesPerMs(kRate / 1000 * (1 + ppm * 1e-6)),
      m_pipe(open(pipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) {
  if (m_pipe < 0) throw std::runtime_error("no sound server listens to the microphone");
  m_thread = std::thread([this] { run(); });
}

Microphone::~Microphone() {
  {
    const std::lock_guard lock(m_mutex);
    m_ended = true;
  }
  m_wake.notify_all();
  m_thread.join();
  close(m_pipe);
}

void Microphone::run() {
  std::unique_lock lock(m_mutex);
  while (!m_wake.wait_for(lock, kPeriod, [this] { return m_ended; })) {
    record(static_cast<std::int64_t>((momentNow() - m_began) * m_framesPerMs));
  }
}

void Microphone::record(std::int64_t due) {
  std::vector<std::int16_t> samples;
  for (; m_recorded < due; ++m_recorded) {
    if (m_clap && m_recorded == *m_clap) {
      m_clapped.push_back(m_began + static_cast<double>(m_recorded) / m_framesPerMs);
    }
    samples.push_back(m_clap ? m_shape.at(m_recorded - *m_clap) : std::int16_t{0});
    if (m_clap && m_recorded - *m_clap >= m_shape.length()) {
      *m_clap += static_cast<std::int64_t>(m_gaps.next() * kRate / 1000);
    }
  }
  if (samples.empty()) return;
  const ssize_t written = write(m_pipe, samples.data(), samples.size() * 2);
  m_lost += static_cast<std::int64_t>(samples.size()) - std::max<ssize_t>(written, 0) / 2;
}

void Microphone::clap() {
  const std::lock_guard lock(m_mutex);
  m_clap = m_recorded + static_cast<std::int64_t>(kRate / 10);
  m_lost = 0;
}

std::vector<Moment> Microphone::clapped() const {
  const std::lock_guard lock(m_mutex);
  return m_clapped;
}

double Microphone::lost() const {
  const std::lock_guard lock(m_mutex);
  return static_cast<double>(m_lost) / m_framesPerMs;
}

}  // namespace qv3::test
