#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "tests/step/claps.h"

namespace qv3::test {

/// The moment of a sorted list that belongs to `expected`: the first within half the shortest gap
/// between two claps.
inline std::optional<Moment> belongingTo(Moment expected, const std::vector<Moment>& moments) {
  constexpr double kReach = ClapGaps::kShortest / 2.0 - 10;
  const auto found = std::lower_bound(moments.begin(), moments.end(), expected - kReach);
  if (found == moments.end() || *found > expected + kReach) return std::nullopt;
  return *found;
}

/// How far one thing was from another, clap by clap, in milliseconds.
class Offsets {
 public:
  void add(double offset) { m_offsets.push_back(offset); }
  void add(const std::optional<Moment>& moment, const std::optional<Moment>& from) {
    if (moment && from) {
      add(*moment - *from);
    } else {
      ++m_lost;
    }
  }

  std::size_t count() const { return m_offsets.size(); }
  /// Claps of which one of the two is missing.
  std::size_t lost() const { return m_lost; }
  double median() const { return part(m_offsets, 0.5); }
  /// Such a part of the claps, 1 for all of them, was no further off than this.
  double reach(double share) const {
    std::vector<double> sizes;
    for (const double offset : m_offsets) sizes.push_back(std::abs(offset));
    return part(sizes, share);
  }

 private:
  static double part(std::vector<double> values, double share) {
    if (values.empty()) return std::nan("");
    std::sort(values.begin(), values.end());
    const auto place = std::ceil(share * static_cast<double>(values.size()));
    return values[static_cast<std::size_t>(std::max(place, 1.0)) - 1];
  }

  std::vector<double> m_offsets;
  std::size_t m_lost = 0;
};

}  // namespace qv3::test
