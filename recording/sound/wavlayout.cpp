#include "recording/sound/wavlayout.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "recording/littleendian.h"

namespace qv3 {
namespace {

constexpr std::uint16_t kPcmTag = 1;
constexpr std::uint16_t kExtensibleTag = 0xFFFE;
constexpr std::uint32_t kFmtSize = 16;
constexpr std::uint32_t kExtensibleSize = 40;
constexpr std::size_t kSubformat = 24;
constexpr std::size_t kRiffHeader = 12;
constexpr std::size_t kChunkHeader = 8;
constexpr int kMostChunks = 10000;  ///< before the sound; more is garbage that would take long

using Bytes = std::span<const std::uint8_t>;

bool hasWord(Bytes bytes, std::size_t offset, std::string_view word) {
  return std::equal(
      word.begin(), word.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset),
      [](char letter, std::uint8_t byte) { return static_cast<std::uint8_t>(letter) == byte; });
}

bool isWhole(const WaveFormat& format) {
  constexpr std::uint32_t kMostBits = 32;
  return format.bitsPerSample >= 8 && format.bitsPerSample <= kMostBits &&
         format.bitsPerSample % 8 == 0;
}

/// False if the chunk cannot be a format.
bool takeFormat(Bytes fmt, WavLayout& layout) {
  if (fmt.size() < kFmtSize) return false;
  auto tag = getLittle<std::uint16_t>(fmt, 0);
  if (tag == kExtensibleTag && fmt.size() >= kExtensibleSize) {
    tag = getLittle<std::uint16_t>(fmt, kSubformat);
  }
  WaveFormat& format = layout.format;
  format.channels = getLittle<std::uint16_t>(fmt, 2);
  format.samplesPerSecond = getLittle<std::uint32_t>(fmt, 4);
  format.bitsPerSample = getLittle<std::uint16_t>(fmt, 14);
  if (format.channels == 0 || format.samplesPerSecond == 0) return false;
  const bool pcm = tag == kPcmTag && isWhole(format);
  layout.kind = pcm ? WavLayout::Kind::Pcm : WavLayout::Kind::Other;
  format.alignment = format.blockSize();
  format.bytesPerSecond =
      to32(std::uint64_t{format.samplesPerSecond} * std::uint64_t{format.blockSize()});
  return true;
}

class ChunkWalk {
 public:
  explicit ChunkWalk(ByteFile& file) : m_file(file), m_size(file.size()) {}

  std::optional<WavLayout> run() {
    std::array<std::uint8_t, kRiffHeader> riff{};
    if (!read(0, riff) || !hasWord(riff, 0, "RIFF") || !hasWord(riff, 8, "WAVE")) return {};
    std::uint64_t at = kRiffHeader;
    std::array<std::uint8_t, kChunkHeader> header{};
    for (int chunk = 0; chunk < kMostChunks && read(at, header); ++chunk) {
      const std::uint64_t size = getLittle<std::uint32_t>(header, 4);
      at += kChunkHeader;
      if (hasWord(header, 0, "data")) return data(at, size);
      if (hasWord(header, 0, "fmt ") && !format(at, size)) return {};
      if (hasWord(header, 0, kSpoolChunk)) m_layout.isSpool = true;
      at += size + size % 2;
    }
    return {};
  }

 private:
  bool read(std::uint64_t at, std::span<std::uint8_t> to) {
    return at + to.size() <= m_size && m_file.readAt(at, to) == to.size();
  }

  bool format(std::uint64_t at, std::uint64_t size) {
    std::vector<std::uint8_t> fmt(std::min<std::uint64_t>(size, kExtensibleSize));
    m_hasFormat = read(at, fmt) && takeFormat(fmt, m_layout);
    return m_hasFormat;
  }

  std::optional<WavLayout> data(std::uint64_t at, std::uint64_t size) {
    if (!m_hasFormat) return std::nullopt;
    const std::uint64_t there = m_size - at;
    m_layout.dataOffset = at;
    m_layout.dataSize = m_layout.isSpool ? there : std::min(size, there);
    if (m_layout.kind == WavLayout::Kind::Pcm) {
      m_layout.dataSize -= m_layout.dataSize % m_layout.format.blockSize();
    }
    return m_layout;
  }

  ByteFile& m_file;
  std::uint64_t m_size;
  bool m_hasFormat = false;
  WavLayout m_layout;
};

}  // namespace

std::optional<WavLayout> readWavLayout(ByteFile& file) {
  return ChunkWalk(file).run();
}

}  // namespace qv3
