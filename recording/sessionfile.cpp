#include "recording/sessionfile.h"

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

}  // namespace qv3
