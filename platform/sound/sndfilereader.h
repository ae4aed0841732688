#pragma once

#include <sndfile.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "recording/sound/soundreader.h"

namespace qv3 {

/// Sound that has to be decoded: ".mp3", and ".wav" that is not integer PCM.
class SndFileReader final : public SoundReader {
 public:
  /// Empty for any other file, and for one that cannot be decoded.
  static std::unique_ptr<SoundReader> open(const std::string& path);

  std::uint32_t framesPerSecond() const override;
  std::uint32_t channels() const override;
  std::int64_t frames() const override { return m_info.frames; }
  void read(std::int64_t frame, std::span<std::int16_t> to) override;

 private:
  struct Closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  using Handle = std::unique_ptr<SNDFILE, Closer>;

  SndFileReader(Handle file, const SF_INFO& info) : m_file(std::move(file)), m_info(info) {}

  bool goTo(std::int64_t frame);
  std::size_t decode(std::size_t frames);

  Handle m_file;
  SF_INFO m_info;
  std::int64_t m_place = 0;  ///< frame that comes next without a seek
  std::vector<float> m_decoded;
};

}  // namespace qv3
