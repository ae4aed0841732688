#include "recording/sound/soundunits.h"

#include <algorithm>
#include <limits>

namespace qv3 {
namespace {

constexpr std::int64_t kMillisecondsPerSecond = 1000;

}  // namespace

// Whole seconds go apart from the rest, so that no product leaves 64 bits before the result does.

std::int64_t SoundUnits::fromFrames(std::int64_t frames, TimeFormat format) const {
  if (format == TimeFormat::Samples) return frames;
  if (format == TimeFormat::Bytes) return frames * m_block;
  const std::int64_t seconds = frames / m_rate;
  const std::int64_t rest = frames % m_rate;
  return seconds * kMillisecondsPerSecond +
         (2 * rest * kMillisecondsPerSecond + m_rate) / (2 * m_rate);
}

std::int64_t SoundUnits::toFrames(std::int64_t units, TimeFormat format) const {
  if (format == TimeFormat::Samples) return units;
  if (format == TimeFormat::Bytes) return units / m_block;
  const std::int64_t seconds = units / kMillisecondsPerSecond;
  const std::int64_t most = std::numeric_limits<std::int64_t>::max() / m_rate - 1;
  if (seconds > most) return most * m_rate;
  return seconds * m_rate + units % kMillisecondsPerSecond * m_rate / kMillisecondsPerSecond;
}

}  // namespace qv3
