#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "tests/step/realprogram.h"
#include "tests/step/sessions.h"

namespace qv3::test {

/// How far one thing was from another, clap by clap, in milliseconds.
class Offsets {
 public:
  void add(const std::optional<Moment>& moment, const std::optional<Moment>& from);

  std::size_t count() const { return m_offsets.size(); }
  /// Claps of which one of the two is missing.
  std::size_t lost() const { return m_lost; }
  double median() const;
  /// Such a part of the claps, 1 for all of them, was no further off than this.
  double reach(double share) const;

 private:
  std::vector<double> m_offsets;
  std::size_t m_lost = 0;
};

/// What was heard and seen of a session that was played.
struct Played {
  Offsets soundToTime;   ///< a clap heard, after the session's clock came to its record's `Time`
  Offsets needleToTime;  ///< the needle seen over there, after the same
  Offsets needleToSound;
  double heardPpm = 0;  ///< by which the sound was faster than the machine's clock
};

Played comparePlayed(const std::vector<std::int32_t>& times, const PositionLog& clock,
                     const std::vector<Moment>& heard, const std::vector<Moment>& seen);

/// What was done while a session was recorded, and the session.
struct Recorded {
  std::vector<Change> sent;     ///< by the meter
  std::vector<Change> stamped;  ///< in the ".qvd"
  std::vector<Moment> clapped;  ///< into the microphone
  std::vector<double> claps;    ///< in the ".wav"
};

/// Of a clap that came together with a reading: how much later than the clap in the sound the
/// `Time` of the reading's record is. Clap by clap, by the reading that was nearest to it.
Offsets compareRecorded(const Recorded& recorded);

}  // namespace qv3::test
