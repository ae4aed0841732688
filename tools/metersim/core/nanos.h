#pragma once

#include <chrono>
#include <cmath>

namespace qv3::metersim {

/// Time on the one monotonic clock, and spans of it. The logic is told it and never asks.
using Nanos = std::chrono::nanoseconds;

constexpr Nanos kNever = Nanos::max();

/// The meter's own rhythm.
constexpr int kFramesPerSecond = 50;
constexpr double kFrameSeconds = 1.0 / kFramesPerSecond;

inline Nanos fromSeconds(double seconds) {
  return Nanos(std::llround(seconds * 1e9));
}

}  // namespace qv3::metersim
