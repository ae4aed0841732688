#pragma once

#include <cstdint>
#include <istream>
#include <memory>

#include "recording/take.h"

namespace qv3 {

/// Reads the journal of a recording that was never saved, in slices.
class JournalLoader {
 public:
  enum class State { Loading, Done, Unreadable };

  /// `size` is the file's length in bytes, `sound` where the recording's sound lies.
  JournalLoader(std::unique_ptr<std::istream> file, std::uint64_t size, TakeSound sound);

  /// Reads up to `bytes` more.
  State step(std::size_t bytes);

  /// 0 to 1.
  double progress() const;

  /// The recovered take, once done; the loader is empty then.
  Take takeRecovered();

 private:
  std::unique_ptr<std::istream> m_file;
  std::uint64_t m_size;
  std::uint64_t m_read = 0;
  TakeSound m_sound;
  JournalReader m_reader;
  State m_state = State::Loading;
};

}  // namespace qv3
