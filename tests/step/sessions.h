#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/step/meterlog.h"

namespace qv3::test {

/// Writes a session, `base`.qvd and `base`.wav, as a recording stamps it whose meter runs
/// `meterPpm` parts in a million fast: at every clap the needle goes over to the other side, and
/// the sound claps at that record's `Time`. Gives these times.
std::vector<std::int32_t> makeSession(const std::string& base, int claps, int meterPpm);

/// A list of readings for meter-sim, another one at every clap, none of them twice: they can be
/// found again in what was recorded.
void writeReadings(const std::string& path, int claps);

/// The changes in a ".qvd", at the `Time` of their records.
std::vector<Change> recordedChanges(const std::string& path);

/// When somebody clapped in a ".wav" of ours, in milliseconds from its begin.
std::vector<double> recordedClaps(const std::string& path);

}  // namespace qv3::test
