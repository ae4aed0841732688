#include "recording/sessionloader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "recording/sessionfile.h"

namespace qv3 {
namespace {

constexpr std::size_t kRecordsARead = 512;

}  // namespace

SessionLoader::SessionLoader(std::unique_ptr<std::istream> file, std::uint64_t size)
    : m_file(std::move(file)), m_count(size / kRecordSize) {
  if (!m_file || !*m_file || m_count < kVerifiedRecords) {
    m_state = State::Incompatible;
    return;
  }
  read(kVerifiedRecords);
  if (!Verify_qvd_Format(m_records)) m_state = State::Incompatible;
}

SessionLoader::State SessionLoader::step(std::size_t records) {
  if (m_state != State::Loading) return m_state;
  const std::uint64_t wanted = std::min<std::uint64_t>(m_count, m_read + records);
  while (m_read < wanted && *m_file) {
    read(std::min<std::uint64_t>(kRecordsARead, wanted - m_read));
  }
  // A file that ends early, because it shrank or its disk failed, is the session it still holds.
  if (m_read == m_count || !*m_file) m_state = State::Done;
  return m_state;
}

void SessionLoader::read(std::size_t records) {
  std::array<char, kRecordsARead * kRecordSize> bytes;
  m_file->read(bytes.data(), static_cast<std::streamsize>(records * kRecordSize));
  const auto whole = static_cast<std::size_t>(m_file->gcount()) / kRecordSize;
  for (std::size_t index = 0; index < whole; ++index) {
    const auto* from = reinterpret_cast<const std::uint8_t*>(bytes.data()) + index * kRecordSize;
    m_records.append(decode(std::span<const std::uint8_t, kRecordSize>(from, kRecordSize)));
  }
  m_read += whole;
}

double SessionLoader::progress() const {
  return m_count == 0 ? 1 : static_cast<double>(m_read) / static_cast<double>(m_count);
}

}  // namespace qv3
