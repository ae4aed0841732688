#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "recording/filetasks.h"
#include "recording/recordbuffer.h"

namespace qv3 {

/// Takes a ".qvd" file in slices, as its disk brings it, so that a long or slow one never stops the
/// window. Whole records only; a tail shorter than a record is ignored. The memory taken follows
/// what was really read, not what the file's size promises.
class SessionLoader {
 public:
  enum class State {
    Loading,
    Done,
    Incompatible  ///< fewer than five records, unreadable, or no session
  };

  /// `size` is the file's length in bytes.
  SessionLoader(std::unique_ptr<ReadAhead> file, std::uint64_t size);

  /// Takes some `records` of what was read since; none where there is nothing yet.
  State step(std::size_t records);
  State state() const { return m_state; }

  /// 0 to 1.
  double progress() const;

  /// The records read, once the state is Done; the loader is empty then.
  RecordBuffer takeRecords() { return std::exchange(m_records, {}); }

 private:
  void append(std::span<const std::uint8_t> bytes);
  void settle();

  std::unique_ptr<ReadAhead> m_file;
  std::uint64_t m_count;
  std::vector<std::uint8_t> m_part;  ///< of a record of which the rest has not come yet
  RecordBuffer m_records;
  State m_state = State::Loading;
};

}  // namespace qv3
