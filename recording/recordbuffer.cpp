#include "recording/recordbuffer.h"

#include <cassert>

namespace qv3 {

void RecordBuffer::append(const SampleRecord& record) {
  if (m_count == m_chunks.size() * kChunk) {
    m_chunks.push_back(std::make_unique_for_overwrite<SampleRecord[]>(kChunk));
  }
  m_chunks.back()[m_count % kChunk] = record;
  ++m_count;
}

void RecordBuffer::clear() {
  m_chunks.clear();
  m_count = 0;
}

const SampleRecord& RecordBuffer::at(std::size_t number) const {
  assert(number >= 1 && number <= m_count);
  const std::size_t index = number - 1;
  return m_chunks[index / kChunk][index % kChunk];
}

}  // namespace qv3
