#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "recording/recordbuffer.h"

namespace qv3 {

/// What a journal opens with: everything besides the records that is needed to save a recording
/// without the program that made it. Texts are UTF-8, at most `kLongestJournalText` bytes.
struct JournalHeader {
  std::optional<SessionStart> start;
  bool withSound = false;
  std::int32_t recordMode = 1;
  std::string folder;  ///< save folder as it was at Record; empty if none was set
  std::string name;    ///< name prepared for the recording, without extension
  std::string spool;   ///< file name of its sound, in the journal's own folder; empty without

  bool operator==(const JournalHeader&) const = default;
};

constexpr std::size_t kLongestJournalText = 8192;

/// The opening of a journal; the records follow it as `encode` makes them. See
/// docs/journal-format.md.
std::vector<std::uint8_t> encodeJournalHeader(const JournalHeader& header);

/// Takes a journal's bytes as they are read, in pieces of any size, and gives back what was
/// recorded: for every prefix of a journal exactly the whole records before the cut.
class JournalReader {
 public:
  enum class State {
    Header,      ///< the opening is not complete yet; at the end of a file: nothing was recorded
    Records,     ///< the header stands, records come
    Ended,       ///< a record that no meter sent: what follows was never completely written
    Unreadable,  ///< no journal, a damaged one, or one of a later program
  };

  void take(std::span<const std::uint8_t> bytes);

  State state() const { return m_state; }
  /// Complete in the states Records and Ended.
  const JournalHeader& header() const { return m_header; }
  const RecordBuffer& records() const { return m_records; }
  /// The reader is of no more use afterwards.
  RecordBuffer takeRecords() { return std::move(m_records); }

  /// Bytes that the header takes; 0 until it stands.
  std::size_t headerSize() const { return m_headerSize; }

 private:
  void takeHeader();
  void appendRecords(std::span<const std::uint8_t> bytes);

  State m_state = State::Header;
  JournalHeader m_header;
  std::size_t m_headerSize = 0;
  std::vector<std::uint8_t> m_waiting;  ///< less than a header, or less than a record
  RecordBuffer m_records;
};

}  // namespace qv3
