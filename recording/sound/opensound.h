#pragma once

#include <memory>
#include <string>

#include "recording/sound/bytefile.h"
#include "recording/sound/soundbackend.h"
#include "recording/sound/soundreader.h"
#include "recording/sounddevice.h"

namespace qv3 {

/// What the device has open.
struct OpenSound {
  enum class Kind {
    New,          ///< a recording, perhaps not begun
    File,         ///< a file that was there
    TimingTrack,  ///< a clock without an end and without sound
  };

  Kind kind = Kind::New;
  SoundType type = SoundType::WaveAudio;
  WaveFormat format;
  std::shared_ptr<SoundReader> reader;  ///< empty for a new one
  std::shared_ptr<ByteFile> file;       ///< likewise

  // Of a file that is the spool of an earlier recording: where its sound lies. It is saved as a
  // recording is, not copied.
  bool isSpool = false;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataSize = 0;
};

struct OpenResult {
  SoundResult result = SoundResult::Done;
  OpenSound sound;
};

/// Opens a file as `type`; `isTimingTrack` for the one that is a clock.
OpenResult openSound(SoundFiles& files, SoundBackend& backend, const std::string& path,
                     SoundType type, bool isTimingTrack);

}  // namespace qv3
