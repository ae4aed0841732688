#include "recording/sessionfile.h"

#include <algorithm>

#include "measure/numbers.h"

namespace qv3 {

RecordBytes fileRecord(const RecordBuffer& records, std::size_t number,
                       const std::optional<SessionStart>& start, const HeaderSettings& header) {
  SampleRecord record = records.at(number);
  if (number <= 2 && start && header.TimeDateEnable) {
    SampleRecord other;
    SampleRecord& first = number == 1 ? record : other;
    SampleRecord& second = number == 2 ? record : other;
    layHeader(first, second, *start, header.ClockType, header.DateType);
  }
  return encode(record);
}

std::vector<std::uint8_t> fileBytes(const RecordBuffer& records,
                                    const std::optional<SessionStart>& start,
                                    const HeaderSettings& header) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(records.count() * kRecordSize);
  for (std::size_t number = 1; number <= records.count(); ++number) {
    const RecordBytes record = fileRecord(records, number, start, header);
    bytes.insert(bytes.end(), record.begin(), record.end());
  }
  return bytes;
}

bool Verify_qvd_Format(const RecordBuffer& records) {
  if (records.count() < kVerifiedRecords) return false;
  for (std::size_t number = 1; number <= kVerifiedRecords; ++number) {
    if (!isPacketLetter(records.at(number).PacketType)) return false;
  }
  return true;
}

std::optional<SessionStart> headerStart(const RecordBuffer& records) {
  if (records.count() < 2 || records.at(1).Mark != 'C') return std::nullopt;
  const SampleRecord& first = records.at(1);
  const SampleRecord& second = records.at(2);
  SessionStart start;
  start.secondsOfDay = first.byte15 << 16 | first.byte16 << 8 | first.byte17;
  if (second.Mark == 'D') {
    start.day = static_cast<std::uint16_t>(second.byte16 << 8 | second.byte17);
  }
  return start;
}

std::size_t FindqvdRecord(const RecordBuffer& records, std::int32_t targetTime) {
  const auto count = static_cast<std::int64_t>(records.count());
  const auto timeOf = [&records](std::int64_t number) {
    return records.at(static_cast<std::size_t>(number)).Time;
  };
  std::int64_t place = std::clamp<std::int64_t>(roundHalfEven(targetTime / 20.0 + 1), 1, count);
  while (place > 0 && timeOf(place) >= targetTime) --place;
  // `place` is 0 or a record before the target now.
  do {
    ++place;
  } while (place < count && timeOf(place) < targetTime);
  return static_cast<std::size_t>(std::min(place, count));
}

}  // namespace qv3
