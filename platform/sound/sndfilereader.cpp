#include "platform/sound/sndfilereader.h"

#include <algorithm>
#include <cmath>

namespace qv3 {
namespace {

/// An MPEG frame needs bits of those before it. libsndfile 1.2 decodes too few of them after a
/// seek: measured with variable bit rate, the first 5000 frames of sound were garbage.
constexpr std::int64_t kRunUp = 16384;

int kindOf(const SF_INFO& info) {
  return info.format & SF_FORMAT_TYPEMASK;
}

bool isKnown(const SF_INFO& info) {
  const int kind = kindOf(info);
  return kind == SF_FORMAT_MPEG || kind == SF_FORMAT_WAV || kind == SF_FORMAT_WAVEX;
}

std::int16_t toSample(float value) {
  constexpr float kFull = 32767;
  return static_cast<std::int16_t>(std::lrint(std::clamp(value, -1.0F, 1.0F) * kFull));
}

}  // namespace

std::unique_ptr<SoundReader> SndFileReader::open(const std::string& path) {
  SF_INFO info{};
  Handle file(sf_open(path.c_str(), SFM_READ, &info));
  if (!file || !isKnown(info)) return nullptr;
  if (info.frames < 0 || info.samplerate < 1 || info.channels < 1) return nullptr;
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
  if (frame < 0 || frame >= m_info.frames || !goTo(frame)) return;
  const std::size_t samples = decode(to.size() / channels());
  std::transform(m_decoded.begin(), m_decoded.begin() + static_cast<std::ptrdiff_t>(samples),
                 to.begin(), toSample);
}

bool SndFileReader::goTo(std::int64_t frame) {
  if (frame == m_place) return true;
  const std::int64_t runUp = kindOf(m_info) == SF_FORMAT_MPEG ? std::min(frame, kRunUp) : 0;
  m_place = sf_seek(m_file.get(), frame - runUp, SEEK_SET);
  if (m_place != frame - runUp) return false;
  decode(static_cast<std::size_t>(runUp));
  return m_place == frame;
}

/// The number of samples it got.
std::size_t SndFileReader::decode(std::size_t frames) {
  m_decoded.resize(frames * channels());
  const sf_count_t got =
      sf_readf_float(m_file.get(), m_decoded.data(), static_cast<sf_count_t>(frames));
  m_place += got;
  // A file may hold numbers that are none.
  for (float& sample : m_decoded) {
    if (!std::isfinite(sample)) sample = 0;
  }
  return static_cast<std::size_t>(got) * channels();
}

}  // namespace qv3
