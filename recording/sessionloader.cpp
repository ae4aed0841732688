#include "recording/sessionloader.h"

#include <algorithm>

#include "recording/sessionfile.h"

namespace qv3 {

SessionLoader::SessionLoader(std::unique_ptr<ReadAhead> file, std::uint64_t size)
    : m_file(std::move(file)), m_count(size / kRecordSize) {
  if (m_count < kVerifiedRecords) m_state = State::Incompatible;
}

SessionLoader::State SessionLoader::step(std::size_t records) {
  const std::size_t wanted = m_records.count() + records;
  while (m_state == State::Loading && m_records.count() < wanted) {
    const std::vector<std::uint8_t> bytes = m_file->take();
    append(bytes);
    settle();
    if (bytes.empty()) break;
  }
  return m_state;
}

/// A file that ends early, because it shrank or its disk failed, is the session it still holds; of
/// one that grew, what was promised is.
void SessionLoader::settle() {
  const bool over = m_records.count() == m_count || m_file->atEnd();
  if (!over && m_records.count() < kVerifiedRecords) return;
  if (!Verify_qvd_Format(m_records)) {
    m_state = State::Incompatible;
  } else if (over) {
    m_state = State::Done;
  }
}

void SessionLoader::append(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty() && m_records.count() < m_count) {
    if (m_part.empty() && bytes.size() >= kRecordSize) {
      m_records.append(decode(bytes.first<kRecordSize>()));
      bytes = bytes.subspan(kRecordSize);
      continue;
    }
    const std::size_t taken = std::min(kRecordSize - m_part.size(), bytes.size());
    const auto part = bytes.first(taken);
    m_part.insert(m_part.end(), part.begin(), part.end());
    bytes = bytes.subspan(taken);
    if (m_part.size() < kRecordSize) return;
    m_records.append(decode(std::span<const std::uint8_t>(m_part).first<kRecordSize>()));
    m_part.clear();
  }
}

double SessionLoader::progress() const {
  if (m_count == 0) return 1;
  return static_cast<double>(m_records.count()) / static_cast<double>(m_count);
}

}  // namespace qv3
