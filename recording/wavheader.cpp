#include "recording/wavheader.h"

#include <string_view>

#include "recording/littleendian.h"
#include "recording/recorder.h"

namespace qv3 {
namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kChannels = 1;
constexpr std::uint32_t kSamplesPerSecond = 22050;
constexpr std::uint16_t kBits = 16;
constexpr std::uint16_t kBlock = kChannels * kBits / 8;
static_assert(kSamplesPerSecond * kBlock == kSoundBytesPerSecond);

void putWord(std::vector<std::uint8_t>& to, std::string_view word) {
  for (const char letter : word) to.push_back(static_cast<std::uint8_t>(letter));
}

}  // namespace

std::vector<std::uint8_t> wavHeader(std::uint64_t dataSize) {
  std::vector<std::uint8_t> header;
  header.reserve(kWavHeaderSize);
  putWord(header, "RIFF");
  putLittle(header, static_cast<std::uint32_t>(dataSize + kWavHeaderSize - 8));
  putWord(header, "WAVEfmt ");
  putLittle(header, std::uint32_t{16});
  putLittle(header, kPcm);
  putLittle(header, kChannels);
  putLittle(header, kSamplesPerSecond);
  putLittle(header, std::uint32_t{kSoundBytesPerSecond});
  putLittle(header, kBlock);
  putLittle(header, kBits);
  putWord(header, "data");
  putLittle(header, static_cast<std::uint32_t>(dataSize));
  return header;
}

}  // namespace qv3
