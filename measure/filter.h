#pragma once

#include <array>
#include <cstdint>

namespace qv3 {

/// Adaptive moving average of the last 3 to 10 readings: short while the reading runs, long while
/// it rests.
class Filter {
 public:
  /// Every reading kept becomes `reading`; the window length stays.
  void refill(std::int32_t reading);

  /// Takes the next reading.
  void push(std::int32_t reading);

  /// The smoothed value, and the window length for the next sample.
  std::int32_t smoothed();

 private:
  static constexpr int kShortest = 3;
  static constexpr int kLongest = 10;
  static constexpr std::int32_t kRunning =
      100;  ///< change over 15 samples that shortens the window

  std::array<std::int32_t, 16> m_history{};  ///< newest first
  int m_length = 0;                          ///< clamped where it is used
};

}  // namespace qv3
