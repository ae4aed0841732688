#include "tests/step/comparison.h"

#include <algorithm>
#include <cmath>

namespace qv3::test {
namespace {

double part(std::vector<double> values, double share) {
  if (values.empty()) return std::nan("");
  std::sort(values.begin(), values.end());
  const auto place = std::ceil(share * static_cast<double>(values.size()));
  return values[static_cast<std::size_t>(std::max(place, 1.0)) - 1];
}

/// The moment of a sorted list that belongs to `expected`: the first within half the shortest gap
/// between two claps.
std::optional<Moment> belongingTo(Moment expected, const std::vector<Moment>& moments) {
  constexpr double kReach = ClapGaps::kShortest / 2.0 - 10;
  const auto found = std::lower_bound(moments.begin(), moments.end(), expected - kReach);
  if (found == moments.end() || *found > expected + kReach) return std::nullopt;
  return *found;
}

/// Something that happened, and what it makes of the session's begin.
struct Origin {
  Moment at = 0;
  double zero = 0;  ///< the moment of the session's 0
};

std::vector<Origin> originsOfData(const Recorded& recorded) {
  std::vector<Origin> origins;
  for (const Change& stamped : recorded.stamped) {
    const auto sent =
        std::find_if(recorded.sent.begin(), recorded.sent.end(),
                     [&](const Change& change) { return change.reading == stamped.reading; });
    if (sent != recorded.sent.end()) origins.push_back({sent->at, sent->at - stamped.at});
  }
  return origins;
}

const Origin& nearest(const std::vector<Origin>& origins, Moment at) {
  return *std::min_element(origins.begin(), origins.end(), [at](const Origin& a, const Origin& b) {
    return std::abs(a.at - at) < std::abs(b.at - at);
  });
}

}  // namespace

void Offsets::add(const std::optional<Moment>& moment, const std::optional<Moment>& from) {
  if (moment && from) {
    m_offsets.push_back(*moment - *from);
  } else {
    ++m_lost;
  }
}

double Offsets::median() const {
  return part(m_offsets, 0.5);
}

double Offsets::reach(double share) const {
  std::vector<double> sizes;
  for (const double offset : m_offsets) sizes.push_back(std::abs(offset));
  return part(sizes, share);
}

Played comparePlayed(const std::vector<std::int32_t>& times, const PositionLog& clock,
                     const std::vector<Moment>& heard, const std::vector<Moment>& seen) {
  Played played;
  std::optional<Moment> first;  // heard, and when that was in the session
  std::int32_t firstTime = 0;
  for (const std::int32_t time : times) {
    const std::optional<Moment> due = clock.reached(time);
    const auto sound = due ? belongingTo(*due, heard) : std::nullopt;
    const auto needle = due ? belongingTo(*due, seen) : std::nullopt;
    played.soundToTime.add(sound, due);
    played.needleToTime.add(needle, due);
    played.needleToSound.add(needle, sound);
    if (!first) {
      first = sound;
      firstTime = time;
    } else if (sound) {
      played.heardPpm = ((time - firstTime) / (*sound - *first) - 1) * 1e6;
    }
  }
  return played;
}

Offsets compareRecorded(const Recorded& recorded) {
  Offsets offsets;
  const std::vector<Origin> data = originsOfData(recorded);
  if (data.empty()) return offsets;
  Moment soundZero = data.front().zero;  // nearly; it moves as far as the clocks differ
  for (const double clap : recorded.claps) {
    const auto moment = belongingTo(soundZero + clap, recorded.clapped);
    if (moment) soundZero = *moment - clap;
    offsets.add(moment ? std::optional(soundZero) : std::nullopt,
                moment ? std::optional(nearest(data, *moment).zero) : std::nullopt);
  }
  return offsets;
}

}  // namespace qv3::test
