#pragma once

#include <cstdint>
#include <string>

#include "recording/recordbuffer.h"

namespace qv3::bench {

constexpr std::size_t kSamplesPerSecond = 50;

/// A session as a calm person gives it: slow waves, nobody moves.
RecordBuffer sampleRecords(std::size_t count);

/// The reading that record `number` of it carries; the same comes again after four minutes only.
std::int32_t sampleReading(std::size_t number);

/// Writes `base`.qvd and `base`.wav, as long as the data and silent. The sound takes no room on the
/// disk. False if it could not be written.
bool writeSampleSession(const std::string& base, std::size_t seconds);

}  // namespace qv3::bench
