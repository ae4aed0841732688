#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "recording/sound/bytefile.h"

namespace qv3 {

/// The header of an MPEG audio frame, layer III.
struct MpegFrame {
  std::uint32_t version = 0;  ///< the two bits of the header: 0 is 2.5, 2 is 2, 3 is 1
  std::uint32_t framesPerSecond = 0;
  std::uint32_t samples = 0;  ///< of each channel
  std::uint32_t bytes = 0;    ///< header included

  bool operator==(const MpegFrame&) const = default;
};

constexpr std::size_t kMpegHeaderSize = 4;

/// Nothing if these bytes do not begin a frame.
std::optional<MpegFrame> parseMpegHeader(std::span<const std::uint8_t, kMpegHeaderSize> bytes);

struct MpegLength {
  std::uint32_t framesPerSecond = 0;
  std::int64_t frames = 0;  ///< samples of each channel in all frames
};

/// Counted frame by frame, over tags and a little garbage; nothing if there is no whole frame that
/// others, or the end of the file, follow.
std::optional<MpegLength> measureMpeg(ByteFile& file);

}  // namespace qv3
