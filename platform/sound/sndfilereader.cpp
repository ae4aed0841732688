#include "platform/sound/sndfilereader.h"

#include <algorithm>

namespace qv3 {
namespace {

bool isKnown(int format) {
  const int kind = format & SF_FORMAT_TYPEMASK;
  return kind == SF_FORMAT_MPEG || kind == SF_FORMAT_WAV || kind == SF_FORMAT_WAVEX;
}

}  // namespace

std::unique_ptr<SoundReader> SndFileReader::open(const std::string& path) {
  SF_INFO info{};
  Handle file(sf_open(path.c_str(), SFM_READ, &info));
  if (!file || !isKnown(info.format)) return nullptr;
  if (info.frames < 0 || info.samplerate < 1 || info.channels < 1) return nullptr;
  // Samples above full scale are cut, not wrapped.
  sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  sf_command(file.get(), SFC_SET_SCALE_FLOAT_INT_READ, nullptr, SF_TRUE);
  return std::unique_ptr<SoundReader>(new SndFileReader(std::move(file), info));
}

std::uint32_t SndFileReader::framesPerSecond() const {
  return static_cast<std::uint32_t>(m_info.samplerate);
}

std::uint32_t SndFileReader::channels() const {
  return static_cast<std::uint32_t>(m_info.channels);
}

void SndFileReader::read(std::int64_t frame, std::span<std::int16_t> to) {
  std::fill(to.begin(), to.end(), std::int16_t{0});
  if (frame < 0 || frame >= m_info.frames) return;
  if (frame != m_place && sf_seek(m_file.get(), frame, SEEK_SET) != frame) return;
  const auto wanted = static_cast<sf_count_t>(to.size() / channels());
  m_place = frame + sf_readf_short(m_file.get(), to.data(), wanted);
}

}  // namespace qv3
