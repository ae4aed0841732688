#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qv3::test {

/// Writes a session, `base`.qvd and `base`.wav, as a recording stamps it whose meter runs
/// `meterPpm` parts in a million fast: at every clap the needle goes over to the other side, and
/// the sound claps at that record's `Time`. Gives these times; empty if the files cannot be
/// written.
std::vector<std::int32_t> makeSession(const std::string& base, int claps, int meterPpm);

/// A list of readings for meter-sim, another one at every clap, none of them twice: they can be
/// found again in what was recorded. False if it cannot be written.
[[nodiscard]] bool writeReadings(const std::string& path, int claps);

/// A reading that is not the one before it, and when it came.
struct Change {
  std::int32_t reading = 0;
  double at = 0;
};

/// The changes that a meter sent, by what meter-sim logs, on the steady clock.
std::vector<Change> sentChanges(const std::string& log);

/// The changes in a ".qvd", at the `Time` of their records.
std::vector<Change> recordedChanges(const std::string& path);

/// When somebody clapped in a ".wav" of ours, in milliseconds from its begin.
std::vector<double> recordedClaps(const std::string& path);

}  // namespace qv3::test
