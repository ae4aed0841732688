#include "recording/journalsink.h"

#include <utility>

namespace qv3 {

void JournalFeed::begin(const JournalHeader& header) {
  m_sink.append(encodeJournalHeader(header));
}

void JournalFeed::update(const RecordBuffer& records) {
  if (m_appended >= records.count()) return;
  std::vector<std::uint8_t> bytes;
  while (m_appended < records.count()) {
    const RecordBytes record = encode(records.at(++m_appended));
    bytes.insert(bytes.end(), record.begin(), record.end());
  }
  m_sink.append(std::move(bytes));
}

}  // namespace qv3
