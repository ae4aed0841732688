#pragma once

#include "recording/journal.h"

namespace qv3::test {

/// The recording that a program makes until it is killed: header and record `number`, from 1.
inline JournalHeader victimHeader(const std::string& spool) {
  return {SessionStart{43200, 9000}, true, 3, "/recordings/", "Take_007", spool};
}

inline SampleRecord victimRecord(std::size_t number) {
  SampleRecord record;
  record.Time = static_cast<std::int32_t>(number) * 20;
  record.Needle = static_cast<std::int16_t>(number * 40503);
  record.byte16 = static_cast<std::uint8_t>(number >> 8);
  record.PacketType = "OPT"[number % 3];
  return record;
}

}  // namespace qv3::test
