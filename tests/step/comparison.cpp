#include "tests/step/comparison.h"

#include <algorithm>
#include <cmath>

namespace qv3::test {
namespace {

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
