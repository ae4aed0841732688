#include "recording/diskwatch.h"

#include <algorithm>
#include <utility>

#include "recording/naming.h"
#include "recording/recorder.h"
#include "recording/samplerecord.h"

namespace qv3 {
namespace {

constexpr std::int64_t kTold = 3600;
constexpr std::int64_t kFull = 120;
constexpr std::uint64_t kSamplesPerSecond = 50;

std::uint64_t secondsIn(std::uint64_t bytes, std::uint64_t bytesPerSecond, std::uint64_t taken) {
  return (bytes - std::min(bytes, taken)) / bytesPerSecond;
}

}  // namespace

std::uint64_t recordedBytesPerSecond(bool withSound) {
  return kSamplesPerSecond * kRecordSize + (withSound ? kSoundBytesPerSecond : 0);
}

std::optional<std::int64_t> recordingSecondsLeft(const std::optional<DiskRoom>& state,
                                                 const std::optional<DiskRoom>& save,
                                                 std::uint64_t taken, bool withSound) {
  if (!state && !save) return std::nullopt;
  const std::uint64_t rate = recordedBytesPerSecond(withSound);
  const bool shared = state && save && state->disk == save->disk;
  std::uint64_t seconds = ~std::uint64_t{0} >> 1;
  if (state) seconds = secondsIn(state->freeBytes, rate, 0);
  // On one disk every second is written twice before the first copy goes.
  if (save)
    seconds = std::min(seconds, secondsIn(save->freeBytes, shared ? 2 * rate : rate, taken));
  return static_cast<std::int64_t>(seconds);
}

DiskWatch::Verdict DiskWatch::look(const std::optional<std::int64_t>& secondsLeft) {
  if (!secondsLeft || *secondsLeft > kTold) return Verdict::Enough;
  if (*secondsLeft < kFull) return Verdict::Full;
  return std::exchange(m_told, true) ? Verdict::Enough : Verdict::Tell;
}

std::string diskMessage(DiskWatch::Verdict verdict, std::int64_t secondsLeft) {
  switch (verdict) {
    case DiskWatch::Verdict::Tell:
      return "The disk has room for " + formatDuration(secondsLeft) + " of recording.";
    case DiskWatch::Verdict::Full:
      return "The disk is full: there is room for less than two minutes of recording.";
    default:
      return {};
  }
}

}  // namespace qv3
