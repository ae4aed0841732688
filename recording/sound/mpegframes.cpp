#include "recording/sound/mpegframes.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

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

/// Looks at a file a few bytes at a time without asking the disk every time.
class Window {
 public:
  explicit Window(ByteFile& file) : m_file(file), m_size(file.size()), m_bytes(kWindow) {}

  std::uint64_t size() const { return m_size; }

  /// Empty where so many bytes are not there.
  std::span<const std::uint8_t> at(std::uint64_t offset, std::size_t count) {
    const bool inside = offset >= m_begin && offset + count <= m_begin + m_filled;
    if (!inside) {
      m_begin = offset;
      m_filled = m_file.readAt(offset, m_bytes);
      if (count > m_filled) return {};
    }
    return std::span(m_bytes).subspan(offset - m_begin, count);
  }

  bool hasWord(std::uint64_t offset, std::string_view word) {
    const auto bytes = at(offset, word.size());
    return !bytes.empty() &&
           std::equal(bytes.begin(), bytes.end(), word.begin(), [](std::uint8_t byte, char letter) {
             return byte == static_cast<std::uint8_t>(letter);
           });
  }

 private:
  static constexpr std::size_t kWindow = 65536;

  ByteFile& m_file;
  std::uint64_t m_size;
  std::vector<std::uint8_t> m_bytes;
  std::uint64_t m_begin = 0;
  std::size_t m_filled = 0;
};

/// A frame that is there as a whole, or begins at least.
std::optional<MpegFrame> frameAt(Window& window, std::uint64_t at) {
  const auto header = window.at(at, kMpegHeaderSize);
  if (header.empty()) return std::nullopt;
  return parseMpegHeader(header.first<kMpegHeaderSize>());
}

/// Length of the tag that many files begin with; its size is written in groups of seven bits.
std::uint64_t leadingTag(Window& window) {
  if (!window.hasWord(0, "ID3")) return 0;
  const auto tag = window.at(0, kTagHeaderSize);
  if (tag.empty()) return 0;
  std::uint64_t size = 0;
  for (const std::uint8_t byte : tag.last(4)) size = size << 7 | (byte & 0x7F);
  return kTagHeaderSize + size;
}

bool isTrailer(Window& window, std::uint64_t at) {
  constexpr std::size_t kName = 3;
  return at + kName > window.size() || window.hasWord(at, "TAG") || window.hasWord(at, "APE");
}

bool startsChain(Window& window, std::uint64_t at) {
  std::optional<MpegFrame> first;
  for (int count = 0; count < kChain; ++count) {
    const std::optional<MpegFrame> frame = frameAt(window, at);
    if (!frame) return count > 0 && isTrailer(window, at);
    if (!first) first = frame;
    if (frame->version != first->version || frame->framesPerSecond != first->framesPerSecond) {
      return false;
    }
    // The last frame of a file may be cut; the first one has to be whole.
    if (at + frame->bytes > window.size()) return count > 0;
    at += frame->bytes;
  }
  return true;
}

std::optional<std::uint64_t> findChain(Window& window, std::uint64_t from) {
  for (std::uint64_t at = from; at < from + kGarbage; ++at) {
    if (at + kMpegHeaderSize > window.size()) break;
    if (startsChain(window, at)) return at;
  }
  return std::nullopt;
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

std::optional<MpegLength> measureMpeg(ByteFile& file) {
  Window window(file);
  std::optional<std::uint64_t> at = findChain(window, leadingTag(window));
  if (!at) return std::nullopt;
  MpegLength length;
  length.framesPerSecond = frameAt(window, *at)->framesPerSecond;
  while (at) {
    const std::optional<MpegFrame> frame = frameAt(window, *at);
    if (!frame) {
      at = findChain(window, *at);
      continue;
    }
    *at += frame->bytes;
    if (*at > window.size()) break;
    length.frames += frame->samples;
  }
  return length;
}

}  // namespace qv3
