#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "recording/samplerecord.h"

namespace qv3 {

/// The records of a session, numbered from 1. Grows by chunks of one minute and never moves a
/// record, so that appending takes the same time in the tenth hour as in the first.
class RecordBuffer {
 public:
  static constexpr std::size_t kChunk = 3000;

  void append(const SampleRecord& record);
  void clear();

  std::size_t count() const { return m_count; }
  bool empty() const { return m_count == 0; }

  /// Record `number`, 1..count().
  const SampleRecord& at(std::size_t number) const;

 private:
  using Chunk = std::unique_ptr<SampleRecord[]>;

  std::vector<Chunk> m_chunks;
  std::size_t m_count = 0;
};

}  // namespace qv3
