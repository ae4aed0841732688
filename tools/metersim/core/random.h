#pragma once

#include <cmath>
#include <cstdint>
#include <random>

namespace qv3::metersim {

/// Numbers that are the same for the same seed everywhere: the standard engine is portable, the
/// standard distributions are not.
class SeededRandom {
 public:
  explicit SeededRandom(std::uint64_t seed) : m_engine(seed) {}

  /// Evenly spread over low (included) to high (not included).
  double uniform(double low, double high) {
    constexpr double kStep = 1.0 / 9007199254740992.0;  // 2^-53
    return low + (high - low) * static_cast<double>(m_engine() >> 11) * kStep;
  }

  int whole(int low, int high) { return static_cast<int>(uniform(low, high + 1.0)); }

  /// The time to the next of events that come at random, `mean` apart.
  double interval(double mean) { return -mean * std::log(1.0 - uniform(0, 1)); }

  /// Bell-shaped, variance 1: twelve even spreads summed, which is near enough for noise.
  double normal() {
    double sum = -6;
    for (int i = 0; i < 12; ++i) sum += uniform(0, 1);
    return sum;
  }

 private:
  std::mt19937_64 m_engine;
};

}  // namespace qv3::metersim
