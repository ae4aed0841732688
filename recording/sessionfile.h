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

/// How many records at the begin of a file are looked at before it is taken for a session.
constexpr std::size_t kVerifiedRecords = 5;

/// True if each of the first five records has a packet letter of the meter ("O", "P" or "T"). A
/// buffer of fewer records is no session.
bool Verify_qvd_Format(const RecordBuffer& records);

/// When the session began, from the header bytes of its first two records; nothing if record 1 has
/// none. Without a date in record 2 the day is 0.
std::optional<SessionStart> headerStart(const RecordBuffer& records);

/// The first record whose `Time` is at or after `targetTime` (ms), by a walk from where an even
/// pace of 20 ms a record would put it; the last record if none is that late. The buffer is not
/// empty.
std::size_t FindqvdRecord(const RecordBuffer& records, std::int32_t targetTime);

}  // namespace qv3
