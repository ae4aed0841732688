#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>

namespace qv3::test {

/// Milliseconds of the machine's steady clock, on which everything that is compared is put.
using Moment = double;

inline Moment momentNow() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double, std::milli>(now).count();
}

/// The gaps between claps in milliseconds: irregular, so that none can be taken for its neighbour.
class ClapGaps {
 public:
  static constexpr int kShortest = 300;
  static constexpr int kLongest = 480;

  int next() {
    m_state = m_state * 1664525U + 1013904223U;
    constexpr unsigned kSteps = (kLongest - kShortest) / 20 + 1;
    return kShortest + static_cast<int>((m_state >> 16) % kSteps) * 20;
  }

 private:
  std::uint32_t m_state = 1;
};

/// Three milliseconds of a loud buzz.
class ClapShape {
 public:
  explicit ClapShape(double framesPerSecond)
      : m_length(static_cast<std::int64_t>(framesPerSecond * 0.003)),
        m_halfWave(static_cast<std::int64_t>(framesPerSecond * 0.0005)) {}

  std::int64_t length() const { return m_length; }
  /// The sample so many frames after the clap's begin.
  std::int16_t at(std::int64_t frame) const {
    if (frame < 0 || frame >= m_length) return 0;
    return frame / m_halfWave % 2 == 0 ? kLoud : -kLoud;
  }

  static constexpr std::int16_t kLoud = 16000;

 private:
  std::int64_t m_length;
  std::int64_t m_halfWave;
};

/// Hears claps: the first loud sample after a while of quiet.
class ClapFinder {
 public:
  explicit ClapFinder(double framesPerSecond)
      : m_quiet(static_cast<std::int64_t>(framesPerSecond * 0.05)), m_since(m_quiet) {}

  /// The next sample of the sound.
  bool beginsAt(std::int16_t sample) {
    const bool loud = std::abs(sample) > ClapShape::kLoud / 3;
    const bool begins = loud && m_since >= m_quiet;
    m_since = loud ? 0 : m_since + 1;
    return begins;
  }

 private:
  std::int64_t m_quiet;
  std::int64_t m_since;
};

}  // namespace qv3::test
