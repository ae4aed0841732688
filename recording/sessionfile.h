#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "recording/recordbuffer.h"

namespace qv3 {

/// The clock and date settings that the header bytes of a file carry.
struct HeaderSettings {
  bool TimeDateEnable = true;
  std::int32_t ClockType = 1;
  std::int32_t DateType = 1;
};

/// The bytes of record `number` as a ".qvd" file holds them: records 1 and 2 carry the header bytes
/// where time and date are wanted and the session has a start.
RecordBytes fileRecord(const RecordBuffer& records, std::size_t number,
                       const std::optional<SessionStart>& start, const HeaderSettings& header);

/// A whole ".qvd" file: exactly 20 bytes a record, nothing before or after.
std::vector<std::uint8_t> fileBytes(const RecordBuffer& records,
                                    const std::optional<SessionStart>& start,
                                    const HeaderSettings& header);

}  // namespace qv3
