#include "recording/sound/mpegframes.h"

#include <array>

namespace qv3 {
namespace {

constexpr std::uint32_t kVersion1 = 3;
constexpr std::uint32_t kReservedVersion = 1;
constexpr std::uint32_t kLayer3 = 1;
constexpr std::array<std::uint32_t, 16> kKilobits1 = {0,   32,  40,  48,  56,  64,  80,  96,
                                                      112, 128, 160, 192, 224, 256, 320, 0};
constexpr std::array<std::uint32_t, 16> kKilobits2 = {0,  8,  16, 24,  32,  40,  48,  56,
                                                      64, 80, 96, 112, 128, 144, 160, 0};
constexpr std::array<std::uint32_t, 4> kRates1 = {44100, 48000, 32000, 0};

constexpr std::uint64_t kGarbage = 65536;  ///< bytes in which the first frame is looked for
constexpr int kChain = 3;                  ///< frames in a row that are no accident
constexpr std::size_t kTagHeaderSize = 10;

std::optional<MpegFrame> frameAt(ByteFile& file, std::uint64_t at) {
  std::array<std::uint8_t, kMpegHeaderSize> header{};
  if (file.readAt(at, header) != header.size()) return std::nullopt;
  return parseMpegHeader(header);
}

/// Length of the tag that many files begin with; its size is written in groups of seven bits.
std::uint64_t leadingTag(ByteFile& file) {
  std::array<std::uint8_t, kTagHeaderSize> tag{};
  if (file.readAt(0, tag) != tag.size()) return 0;
  if (tag[0] != 'I' || tag[1] != 'D' || tag[2] != '3') return 0;
  std::uint64_t size = 0;
  for (std::size_t index = 6; index < kTagHeaderSize; ++index)
    size = size << 7 | (tag[index] & 0x7F);
  return kTagHeaderSize + size;
}

bool isTrailer(ByteFile& file, std::uint64_t at) {
  std::array<std::uint8_t, 3> bytes{};
  if (file.readAt(at, bytes) < bytes.size()) return true;
  return (bytes[0] == 'T' && bytes[1] == 'A' && bytes[2] == 'G') ||
         (bytes[0] == 'A' && bytes[1] == 'P' && bytes[2] == 'E');
}

bool startsChain(ByteFile& file, std::uint64_t at, std::uint64_t size) {
  std::optional<MpegFrame> first;
  for (int count = 0; count < kChain; ++count) {
    const std::optional<MpegFrame> frame = frameAt(file, at);
    if (!frame) return count > 0 && isTrailer(file, at);
    if (!first) first = frame;
    if (frame->version != first->version || frame->framesPerSecond != first->framesPerSecond) {
      return false;
    }
    // The last frame of a file may be cut; the first one has to be whole.
    if (at + frame->bytes > size) return count > 0;
    at += frame->bytes;
  }
  return true;
}

}  // namespace

std::optional<MpegFrame> parseMpegHeader(std::span<const std::uint8_t, kMpegHeaderSize> bytes) {
  if (bytes[0] != 0xFF || (bytes[1] & 0xE0) != 0xE0) return std::nullopt;
  const std::uint32_t version = (bytes[1] >> 3) & 3;
  const std::uint32_t layer = (bytes[1] >> 1) & 3;
  if (version == kReservedVersion || layer != kLayer3) return std::nullopt;
  const bool isVersion1 = version == kVersion1;
  const std::uint32_t kilobits = (isVersion1 ? kKilobits1 : kKilobits2)[bytes[2] >> 4];
  const std::uint32_t halvings = isVersion1 ? 0 : version == 2 ? 1 : 2;
  const std::uint32_t rate = kRates1[(bytes[2] >> 2) & 3] >> halvings;
  const bool reservedEmphasis = (bytes[3] & 3) == 2;
  if (kilobits == 0 || rate == 0 || reservedEmphasis) return std::nullopt;
  MpegFrame frame;
  frame.version = version;
  frame.framesPerSecond = rate;
  frame.samples = isVersion1 ? 1152 : 576;
  frame.bytes = frame.samples / 8 * kilobits * 1000 / rate + ((bytes[2] >> 1) & 1);
  return frame;
}

std::optional<std::uint64_t> findMpegFrame(ByteFile& file) {
  const std::uint64_t size = file.size();
  const std::uint64_t begin = leadingTag(file);
  for (std::uint64_t at = begin; at < begin + kGarbage && at + kMpegHeaderSize <= size; ++at) {
    if (startsChain(file, at, size)) return at;
  }
  return std::nullopt;
}

std::optional<MpegLength> measureMpeg(ByteFile& file) {
  const std::optional<std::uint64_t> start = findMpegFrame(file);
  if (!start) return std::nullopt;
  const std::uint64_t size = file.size();
  MpegLength length;
  std::uint64_t at = *start;
  for (auto frame = frameAt(file, at); frame && at + frame->bytes <= size;
       frame = frameAt(file, at)) {
    length.framesPerSecond = frame->framesPerSecond;
    length.frames += frame->samples;
    at += frame->bytes;
  }
  return length;
}

}  // namespace qv3
