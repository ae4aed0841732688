#include "tests/step/monitorear.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

namespace qv3::test {
namespace {

constexpr double kRate = 44100;
constexpr double kNear = 5000;  // ms

}  // namespace

MonitorEar::MonitorEar(int ppm) : m_framesPerMs(44.1 * (1 + ppm * 1e-6)) {
  const std::string command =
      "exec pacat --record -d room.monitor --raw --rate=44100 --channels=1 --format=s16le "
      "--latency-msec=" +
      std::to_string(kPieceMs) + " 2>/dev/null";
  m_recorder = popen(command.c_str(), "re");
  if (m_recorder == nullptr) throw std::runtime_error("nothing can be heard");
  m_thread = std::thread([this] { run(); });
}

MonitorEar::~MonitorEar() {
  m_ended = true;
  m_thread.join();
  pclose(m_recorder);
}

/// The monitor never stands still, so that the end is seen soon.
void MonitorEar::run() {
  ClapFinder finder(kRate);
  std::array<std::int16_t, 2048> samples;
  std::int64_t frames = 0;
  while (!m_ended) {
    const ssize_t got = read(fileno(m_recorder), samples.data(), sizeof samples);
    if (got <= 0) return;
    const std::lock_guard lock(m_mutex);
    for (std::int64_t i = 0; i < got / 2; ++i) {
      if (finder.beginsAt(samples[static_cast<std::size_t>(i)])) m_claps.push_back(frames + i);
    }
    frames += got / 2;
    m_reads.push_back({momentNow(), frames});
  }
}

Moment MonitorEar::momentOf(std::int64_t frame) const {
  const auto inSound = [this](std::int64_t frames) {
    return static_cast<double>(frames) / m_framesPerMs;
  };
  const auto before = [](const Read& read, double frames) {
    return static_cast<double>(read.frames) < frames;
  };
  const double reach = kNear * m_framesPerMs;
  const auto first =
      std::lower_bound(m_reads.begin(), m_reads.end(), static_cast<double>(frame) - reach, before);
  const auto last =
      std::lower_bound(first, m_reads.end(), static_cast<double>(frame) + reach, before);
  const auto lag = [&](const Read& read) { return read.at - inSound(read.frames); };
  const auto soonest =
      std::min_element(first, last, [&](const Read& a, const Read& b) { return lag(a) < lag(b); });
  return lag(soonest == last ? m_reads.back() : *soonest) + inSound(frame);
}

std::vector<Moment> MonitorEar::heard() const {
  const std::lock_guard lock(m_mutex);
  std::vector<Moment> moments;
  for (const std::int64_t frame : m_claps) moments.push_back(momentOf(frame));
  return moments;
}

}  // namespace qv3::test
