#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "recording/recordbuffer.h"

namespace qv3::test {

/// Samples 20 ms apart, the first at 0; no two readings in a row are the same.
inline RecordBuffer someRecords(int count) {
  RecordBuffer records;
  for (int n = 0; n < count; ++n) {
    SampleRecord record;
    record.Time = n * 20;
    record.Needle = static_cast<std::int16_t>(n * 1009);
    record.PacketType = "OPT"[n % 3];
    records.append(record);
  }
  return records;
}

inline std::string hexOf(std::span<const std::uint8_t> bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : bytes) text += {kDigits[byte >> 4], kDigits[byte & 15]};
  return text;
}

inline std::string textOf(std::span<const std::uint8_t> bytes) {
  return {bytes.begin(), bytes.end()};
}

}  // namespace qv3::test
