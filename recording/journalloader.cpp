#include "recording/journalloader.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace qv3 {

JournalLoader::JournalLoader(std::unique_ptr<std::istream> file, std::uint64_t size,
                             TakeSound sound)
    : m_file(std::move(file)), m_size(size), m_sound(std::move(sound)) {}

JournalLoader::State JournalLoader::step(std::size_t bytes) {
  if (m_state != State::Loading) return m_state;
  std::vector<std::uint8_t> block(bytes);
  m_file->read(reinterpret_cast<char*>(block.data()), static_cast<std::streamsize>(bytes));
  const auto read = static_cast<std::size_t>(m_file->gcount());
  m_read += read;
  m_reader.take(std::span(block).first(read));
  const bool readable = m_reader.state() == JournalReader::State::Records ||
                        m_reader.state() == JournalReader::State::Ended;
  // A disk that fails half-way still gave what stood before.
  if (!*m_file || m_reader.state() == JournalReader::State::Unreadable) {
    m_state = readable ? State::Done : State::Unreadable;
  }
  return m_state;
}

double JournalLoader::progress() const {
  return m_size == 0 ? 1 : std::min(1.0, static_cast<double>(m_read) / static_cast<double>(m_size));
}

Take JournalLoader::takeRecovered() {
  return recoveredTake(m_reader.header(), m_reader.takeRecords(), std::move(m_sound));
}

}  // namespace qv3
