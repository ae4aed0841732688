#include "recording/sound/opensound.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "recording/sound/mpegframes.h"
#include "recording/sound/pcmreader.h"
#include "recording/sound/wavlayout.h"

namespace qv3 {
namespace {

constexpr std::uint32_t kDecodedBits = 16;

/// The timing track: it is never heard.
class SilentReader final : public SoundReader {
 public:
  explicit SilentReader(const MpegLength& length) : m_length(length) {}

  std::uint32_t framesPerSecond() const override { return m_length.framesPerSecond; }
  std::uint32_t channels() const override { return 1; }
  std::int64_t frames() const override { return m_length.frames; }
  void read(std::int64_t, std::span<std::int16_t> to) override {
    std::fill(to.begin(), to.end(), std::int16_t{0});
  }

 private:
  MpegLength m_length;
};

/// A decoder guesses the length of an ".mp3" by its size, or believes a header; there is no more
/// than the frames that were counted.
class ShortenedReader final : public SoundReader {
 public:
  ShortenedReader(std::shared_ptr<SoundReader> whole, std::int64_t most)
      : m_whole(std::move(whole)), m_frames(std::min(m_whole->frames(), most)) {}

  std::uint32_t framesPerSecond() const override { return m_whole->framesPerSecond(); }
  std::uint32_t channels() const override { return m_whole->channels(); }
  std::int64_t frames() const override { return m_frames; }
  void read(std::int64_t frame, std::span<std::int16_t> to) override { m_whole->read(frame, to); }

 private:
  std::shared_ptr<SoundReader> m_whole;
  std::int64_t m_frames;
};

OpenResult failed(SoundResult result) {
  return {result, {}};
}

WaveFormat decodedFormat(const SoundReader& reader) {
  WaveFormat format;
  format.samplesPerSecond = reader.framesPerSecond();
  format.channels = reader.channels();
  format.bitsPerSample = kDecodedBits;
  format.alignment = format.blockSize();
  format.bytesPerSecond = format.samplesPerSecond * format.blockSize();
  return format;
}

OpenResult openDecoded(SoundBackend& backend, const std::string& path, OpenSound sound) {
  sound.reader = backend.openDecoder(path);
  if (!sound.reader) return failed(SoundResult::Unreadable);
  sound.format = decodedFormat(*sound.reader);
  return {SoundResult::Done, std::move(sound)};
}

OpenResult openPcm(const WavLayout& layout, OpenSound sound) {
  sound.format = layout.format;
  sound.isSpool = layout.isSpool;
  sound.dataOffset = layout.dataOffset;
  sound.dataSize = layout.dataSize;
  const auto frames = static_cast<std::int64_t>(layout.dataSize / layout.format.blockSize());
  sound.reader = std::make_shared<PcmReader>(sound.file, layout.dataOffset, layout.format, frames);
  return {SoundResult::Done, std::move(sound)};
}

}  // namespace

OpenResult openSound(SoundFiles& files, SoundBackend& backend, const std::string& path,
                     SoundType type, bool isTimingTrack) {
  const PathKind kind = files.kind(path);
  if (kind == PathKind::Missing || kind == PathKind::Folder) return failed(SoundResult::NotFound);
  OpenSound sound;
  sound.kind = OpenSound::Kind::File;
  sound.type = type;
  // Anything else, a pipe for one, could hold the reader for ever.
  if (kind == PathKind::File) sound.file = files.open(path);
  if (!sound.file) return failed(SoundResult::Unreadable);

  if (const auto layout = readWavLayout(*sound.file); layout && !isTimingTrack) {
    if (layout->kind == WavLayout::Kind::Pcm) return openPcm(*layout, std::move(sound));
    return openDecoded(backend, path, std::move(sound));
  }
  if (type == SoundType::WaveAudio) return failed(SoundResult::Unreadable);
  const std::optional<MpegLength> length = measureMpeg(*sound.file);
  if (!length) return failed(SoundResult::Unreadable);
  if (isTimingTrack) {
    sound.kind = OpenSound::Kind::TimingTrack;
    sound.reader = std::make_shared<SilentReader>(*length);
    sound.format = decodedFormat(*sound.reader);
    return {SoundResult::Done, std::move(sound)};
  }
  OpenResult opened = openDecoded(backend, path, std::move(sound));
  if (opened.result == SoundResult::Done) {
    auto& reader = opened.sound.reader;
    reader = std::make_shared<ShortenedReader>(reader, length->frames);
  }
  return opened;
}

}  // namespace qv3
