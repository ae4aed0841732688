#pragma once

#include <cstdint>

namespace qv3 {

/// Tells a movement of the body from a change of the skin by the second difference of three
/// successive readings.
class BodyMotionDetector {
 public:
  /// Forgets the readings before `reading`.
  void restart(std::int32_t reading);

  /// Takes the next reading; true if the second difference exceeds `threshold`.
  bool push(std::int32_t reading, int threshold);

  /// Starts the hold. `now` is the time of day in seconds, single precision.
  void trigger(float now) { m_triggered = now; }

  /// True once more than `hold` seconds have passed since the last trigger, across midnight too.
  bool holdOver(float now, float hold) const;

 private:
  std::int32_t m_newest = 0;
  std::int32_t m_middle = 0;
  float m_triggered = 0;
};

}  // namespace qv3
