#include "recording/sound/pcmreader.h"

#include <algorithm>
#include <utility>

namespace qv3 {
namespace {

constexpr std::uint8_t kMiddle = 0x80;  ///< 8-bit PCM has its zero here

/// The two highest bytes of a sample.
std::int16_t sampleAt(std::span<const std::uint8_t> bytes, std::size_t offset, std::size_t width) {
  if (width == 1) return static_cast<std::int16_t>((bytes[offset] - kMiddle) * 256);
  const unsigned low = bytes[offset + width - 2];
  const unsigned high = bytes[offset + width - 1];
  return static_cast<std::int16_t>(low | high << 8);
}

}  // namespace

PcmReader::PcmReader(std::shared_ptr<ByteFile> file, std::uint64_t offset, const WaveFormat& format,
                     std::int64_t frames)
    : m_file(std::move(file)), m_offset(offset), m_format(format), m_frames(frames) {}

void PcmReader::read(std::int64_t frame, std::span<std::int16_t> to) {
  const std::int64_t wanted = static_cast<std::int64_t>(to.size() / m_format.channels);
  const std::int64_t there = std::clamp<std::int64_t>(m_frames - frame, 0, wanted);
  const std::size_t width = m_format.bitsPerSample / 8;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(there) * m_format.blockSize());
  const std::uint64_t place = m_offset + static_cast<std::uint64_t>(frame) * m_format.blockSize();
  const std::size_t samples = m_file->readAt(place, bytes) / width;
  for (std::size_t index = 0; index < samples; ++index) {
    to[index] = sampleAt(bytes, index * width, width);
  }
  std::fill(to.begin() + static_cast<std::ptrdiff_t>(samples), to.end(), std::int16_t{0});
}

void appendPcm(std::span<const std::int16_t> samples, std::uint32_t bitsPerSample,
               std::vector<std::uint8_t>& to) {
  const std::size_t width = bitsPerSample / 8;
  for (const std::int16_t sample : samples) {
    const auto bits = static_cast<std::uint16_t>(sample);
    if (width == 1) {
      to.push_back(static_cast<std::uint8_t>((bits >> 8) ^ kMiddle));
      continue;
    }
    to.insert(to.end(), width - 2, 0);
    to.push_back(static_cast<std::uint8_t>(bits));
    to.push_back(static_cast<std::uint8_t>(bits >> 8));
  }
}

std::uint8_t silentByte(const WaveFormat& format) {
  return format.bitsPerSample == 8 ? kMiddle : 0;
}

}  // namespace qv3
