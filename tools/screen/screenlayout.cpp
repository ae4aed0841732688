#include "tools/screen/screenlayout.h"

namespace qv3 {

namespace {

// The header's words, each of four bytes, the highest first.
enum Word {
  kHeaderSize = 0,
  kVersion = 1,
  kFormat = 2,
  kWidth = 4,
  kHeight = 5,
  kByteOrder = 7,
  kBitsPerPixel = 11,
  kBytesPerLine = 12,
  kColours = 19,
  kWords = 25
};

constexpr std::uint32_t kWindowDump = 7;
constexpr std::uint32_t kWholePixels = 2;
constexpr std::uint32_t kLowestFirst = 0;
constexpr std::size_t kColourSize = 12;
constexpr std::uint32_t kLargest = 32767;  // pixels either way; a display has no more

std::uint32_t wordAt(std::span<const std::uint8_t> file, Word word) {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : file.subspan(std::size_t{4} * word, 4)) value = value << 8 | byte;
  return value;
}

}  // namespace

std::optional<ScreenLayout> readScreenLayout(std::span<const std::uint8_t> file) {
  if (file.size() < std::size_t{4} * kWords) return std::nullopt;
  if (wordAt(file, kVersion) != kWindowDump || wordAt(file, kFormat) != kWholePixels ||
      wordAt(file, kByteOrder) != kLowestFirst || wordAt(file, kBitsPerPixel) != 32) {
    return std::nullopt;
  }
  const std::uint32_t width = wordAt(file, kWidth);
  const std::uint32_t height = wordAt(file, kHeight);
  if (width == 0 || width > kLargest || height == 0 || height > kLargest) return std::nullopt;
  ScreenLayout layout;
  layout.width = static_cast<int>(width);
  layout.height = static_cast<int>(height);
  layout.offset = wordAt(file, kHeaderSize) + kColourSize * wordAt(file, kColours);
  layout.stride = wordAt(file, kBytesPerLine);
  if (layout.stride < std::size_t{4} * width || layout.fileSize() > file.size()) {
    return std::nullopt;
  }
  return layout;
}

}  // namespace qv3
