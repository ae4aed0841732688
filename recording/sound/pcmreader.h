#pragma once

#include <memory>
#include <span>
#include <vector>

#include "recording/sound/bytefile.h"
#include "recording/sound/soundreader.h"
#include "recording/sounddevice.h"

namespace qv3 {

/// Integer PCM in a file, from `offset` on.
class PcmReader final : public SoundReader {
 public:
  PcmReader(std::shared_ptr<ByteFile> file, std::uint64_t offset, const WaveFormat& format,
            std::int64_t frames);

  std::uint32_t framesPerSecond() const override { return m_format.samplesPerSecond; }
  std::uint32_t channels() const override { return m_format.channels; }
  std::int64_t frames() const override { return m_frames; }
  void read(std::int64_t frame, std::span<std::int16_t> to) override;

 private:
  std::shared_ptr<ByteFile> m_file;
  std::uint64_t m_offset;
  WaveFormat m_format;
  std::int64_t m_frames;
};

/// 16-bit samples as PCM of another width, lowest byte first; 8 bit is without a sign.
void appendPcm(std::span<const std::int16_t> samples, std::uint32_t bitsPerSample,
               std::vector<std::uint8_t>& to);

/// The byte of which silence is made.
std::uint8_t silentByte(const WaveFormat& format);

}  // namespace qv3
