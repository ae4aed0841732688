#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "recording/journal.h"
#include "recording/recordbuffer.h"
#include "recording/recordmodes.h"

namespace qv3 {

/// Where the sound of a session lies.
struct TakeSound {
  enum class Kind {
    None,
    Spool,  ///< bytes `offset` to `offset` + `length` of `path`: as they were recorded
    Wav,    ///< the file `path`, whole
    Mp3,    ///< likewise
  };

  Kind kind = Kind::None;
  std::string path;
  std::uint64_t offset = 0;
  std::uint64_t length = 0;

  bool operator==(const TakeSound&) const = default;
};

/// A recording or a loaded session: all that saving, playing and leaving it depend on.
struct Take {
  RecordBuffer records;
  std::optional<SessionStart> start;
  bool withSound = false;  ///< the audio mode it was made with, whatever the setting is now
  std::int32_t recordMode = kManualMode;
  std::string folder;  ///< save folder as it was at Record
  std::string name;    ///< prepared name, may lead through folders; no extension
  TakeSound sound;
  bool unsaved = false;
  bool loaded = false;  ///< there is something to play and to save
};

/// What the journal of a take opens with; `spool` is the file name of its sound.
JournalHeader journalHeader(const Take& take, const std::string& spool);

/// A recording found in a journal: as one just made in manual mode, with the name that was prepared
/// for it.
Take recoveredTake(const JournalHeader& header, RecordBuffer records, TakeSound sound);

/// Where a save put a session.
struct SavedFiles {
  std::string folder;
  std::string name;
  TakeSound sound;
};

/// Saved: from now on its sound is the saved file, which outlives the spool.
void noteSaved(Take& take, const SavedFiles& files);

/// Length in bytes to which `length` bytes of recorded sound are to be brought with silence, so
/// that playback finds sound at every record. Sound that reaches the last record stays as it is.
std::uint64_t paddedSoundLength(const RecordBuffer& records, std::uint64_t length);

}  // namespace qv3
