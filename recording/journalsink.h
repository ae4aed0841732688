#pragma once

#include <cstdint>
#include <vector>

#include "recording/journal.h"

namespace qv3 {

/// The journal of one take, on its way to the disk. No call waits: bytes are handed over. That it
/// cannot be written is told once, from the event loop, to whoever made it; from then on it takes
/// everything and does nothing. Until it is removed, moved to the trash or destroyed the take is
/// this program's own; one that is merely destroyed is offered at the next start.
class JournalSink {
 public:
  virtual ~JournalSink() = default;

  virtual void append(std::vector<std::uint8_t> bytes) = 0;
  /// Nothing more comes. The take stays this program's own.
  virtual void finish() = 0;
  /// The journal and the sound beside it go: the recording is saved, or the user gave it up.
  virtual void remove() = 0;
  /// Both go to the trash: the recording was given up without a question.
  virtual void moveToTrash() = 0;
};

/// Feeds a journal with the records of the running recording.
class JournalFeed {
 public:
  explicit JournalFeed(JournalSink& sink) : m_sink(sink) {}

  /// The data begins.
  void begin(const JournalHeader& header);
  /// Appends the records that came since the last call.
  void update(const RecordBuffer& records);

 private:
  JournalSink& m_sink;
  std::size_t m_appended = 0;
};

}  // namespace qv3
