#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "recording/sound/bytefile.h"
#include "recording/sounddevice.h"
#include "recording/wavheader.h"

namespace qv3 {

/// A chunk of this name stands before the sound of a spool file. Readers skip it; it grows over
/// what is cut off the front of the sound. In a file that has it the sound goes to the end of the
/// file, whatever the header says.
constexpr char kSpoolChunk[] = "qv3s";

/// Where the sound of a ".wav" file lies.
struct WavLayout {
  enum class Kind {
    Pcm,    ///< integer PCM: what `format` says
    Other,  ///< well formed, but the sound needs a decoder
  };

  Kind kind = Kind::Pcm;
  WaveFormat format;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataSize = 0;  ///< bytes that are there, whole blocks
  bool isSpool = false;
};

/// Nothing if it is not a ".wav" file with a complete header.
std::optional<WavLayout> readWavLayout(ByteFile& file);

}  // namespace qv3
