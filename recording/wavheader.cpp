#include "recording/wavheader.h"

#include "recording/littleendian.h"
#include "recording/recorder.h"

namespace qv3 {
namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::uint32_t kFormatSize = 16;
constexpr std::size_t kChunkHeader = 8;

}  // namespace

WaveFormat recordedFormat() {
  return {22050, 1, 16, kSoundBytesPerSecond, 2};
}

std::vector<std::uint8_t> pcmHeader(const WaveFormat& format, std::uint64_t dataSize) {
  std::vector<std::uint8_t> header;
  header.reserve(kPcmHeaderSize);
  putWord(header, "RIFF");
  putLittle(header, to32(dataSize + kPcmHeaderSize - kChunkHeader));
  putWord(header, "WAVEfmt ");
  putLittle(header, kFormatSize);
  putLittle(header, kPcm);
  putLittle(header, static_cast<std::uint16_t>(format.channels));
  putLittle(header, format.samplesPerSecond);
  putLittle(header,
            to32(std::uint64_t{format.samplesPerSecond} * std::uint64_t{format.blockSize()}));
  putLittle(header, static_cast<std::uint16_t>(format.blockSize()));
  putLittle(header, static_cast<std::uint16_t>(format.bitsPerSample));
  putWord(header, "data");
  putLittle(header, to32(dataSize));
  return header;
}

}  // namespace qv3
