#include "recording/take.h"

#include <algorithm>
#include <utility>

#include "recording/recorder.h"
#include "recording/wavheader.h"

namespace qv3 {

JournalHeader journalHeader(const Take& take, const std::string& spool) {
  return {take.start, take.withSound, take.recordMode, take.folder, take.name, spool};
}

Take recoveredTake(const JournalHeader& header, RecordBuffer records, TakeSound sound) {
  Take take;
  take.records = std::move(records);
  take.start = header.start;
  take.withSound = header.withSound;
  take.recordMode = kManualMode;
  take.folder = header.folder;
  take.name = header.name;
  take.sound = std::move(sound);
  take.unsaved = true;
  take.loaded = true;
  return take;
}

void noteSaved(Take& take, const SavedFiles& files) {
  take.folder = files.folder;
  take.name = files.name;
  take.sound = files.sound;
  take.unsaved = false;
}

std::uint64_t paddedSoundLength(const RecordBuffer& records, std::uint64_t length) {
  constexpr std::uint64_t kSamplePeriod = 20;  // ms
  constexpr std::uint64_t kBlock = 2;
  const auto bytesAt = [](std::uint64_t milliseconds) {
    return milliseconds * kSoundBytesPerSecond / 1000 / kBlock * kBlock;
  };
  std::uint64_t wanted = length;
  if (!records.empty()) {
    const auto last = static_cast<std::uint64_t>(std::max(records.at(records.count()).Time, 0));
    if (bytesAt(last) > length) wanted = bytesAt(last + kSamplePeriod);
  }
  return std::min(wanted, kLongestWavData);
}

}  // namespace qv3
