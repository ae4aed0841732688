#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <utility>

#include "recording/recordbuffer.h"

namespace qv3 {

/// Reads a ".qvd" file in slices, so that a long or slow one never stops the window. Whole records
/// only; a tail shorter than a record is ignored. The memory taken follows what was really read,
/// not what the file's size promises.
class SessionLoader {
 public:
  enum class State {
    Loading,
    Done,
    Incompatible  ///< fewer than five records, unreadable, or no session
  };

  /// `size` is the file's length in bytes.
  SessionLoader(std::unique_ptr<std::istream> file, std::uint64_t size);

  /// Reads up to `records` more records.
  State step(std::size_t records);
  State state() const { return m_state; }

  /// 0 to 1.
  double progress() const;

  /// The records read, once the state is Done; the loader is empty then.
  RecordBuffer takeRecords() { return std::exchange(m_records, {}); }

 private:
  void read(std::size_t records);

  std::unique_ptr<std::istream> m_file;
  std::uint64_t m_count;
  std::uint64_t m_read = 0;
  RecordBuffer m_records;
  State m_state = State::Loading;
};

}  // namespace qv3
