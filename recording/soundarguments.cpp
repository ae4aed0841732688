#include "recording/soundarguments.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "recording/sounderrors.h"

namespace qv3 {
namespace {

using namespace soundcode;
using Words = std::vector<SoundWord>;

constexpr std::size_t kAfterAlias = 2;

void note(int& code, int found) {
  if (code == 0) code = found;
}

const std::string* textAt(const Words& words, std::size_t index) {
  return index < words.size() ? &words[index].text : nullptr;
}

SoundNumber numberAt(const Words& words, std::size_t index) {
  const std::string* text = textAt(words, index);
  return text ? parseSoundNumber(*text) : SoundNumber{kBadNumber, 0};
}

/// The value of a keyword of `open`; a missing one counts as empty.
void takeValue(std::optional<std::string>& to, const Words& words, std::size_t index, int& code) {
  if (to) {
    note(code, kTwice);
    return;
  }
  const std::string* text = textAt(words, index);
  if (text) to = *text;
}

void takeName(OpenArguments& result, const SoundWord& word) {
  const bool isNew = word.is("new");
  if (!result.name) {
    result.name = word;
    result.isNew = isNew || (word.quoted && word.text.empty());
  } else if (word.quoted || isNew || result.name->is("new")) {
    note(result.code, kTwice);
  } else {
    // Without quotes it can only be the rest of a name with blanks.
    note(result.code, result.name->quoted ? kUnknownWord : kUnknownCommand);
  }
}

struct WaveItem {
  std::string_view word;
  std::uint32_t WaveFormat::*field;
  std::int64_t most;
};

constexpr std::int64_t kMostChannels = 8;
constexpr std::int64_t kMostSamplesPerSecond = 384000;
constexpr std::int64_t kMostBytesPerSecond = 0xFFFFFFFF;
constexpr std::int64_t kMostAlignment = 0xFFFF;
constexpr std::int64_t kMostBits = 32;

constexpr std::array kWaveItems = {
    WaveItem{"bitspersample", &WaveFormat::bitsPerSample, kMostBits},
    WaveItem{"channels", &WaveFormat::channels, kMostChannels},
    WaveItem{"alignment", &WaveFormat::alignment, kMostAlignment},
    WaveItem{"samplespersec", &WaveFormat::samplesPerSecond, kMostSamplesPerSecond},
    WaveItem{"bytespersec", &WaveFormat::bytesPerSecond, kMostBytesPerSecond},
};
constexpr std::size_t kTimeFormatItem = kWaveItems.size();
constexpr std::size_t kFormatTagItem = kWaveItems.size() + 1;
constexpr std::size_t kNoItem = kWaveItems.size() + 2;

std::size_t setItem(const Words& words, std::size_t index) {
  const auto* item =
      std::find_if(kWaveItems.begin(), kWaveItems.end(),
                   [&](const WaveItem& candidate) { return words[index].is(candidate.word); });
  if (item != kWaveItems.end()) return static_cast<std::size_t>(item - kWaveItems.begin());
  if (index + 1 == words.size()) return kNoItem;
  if (words[index].is("time") && words[index + 1].is("format")) return kTimeFormatItem;
  if (words[index].is("format") && words[index + 1].is("tag")) return kFormatTagItem;
  return kNoItem;
}

int takeWaveNumber(const WaveItem& item, const SoundNumber& number, WaveFormat& wave) {
  if (number.code != 0) return number.code;
  if (number.value < 1 || number.value > item.most) return kOutOfRange;
  if (item.field == &WaveFormat::bitsPerSample && number.value % 8 != 0) return kOutOfRange;
  wave.*item.field = static_cast<std::uint32_t>(number.value);
  return 0;
}

int takeTimeFormat(const SoundWord* word, SoundType type, std::optional<TimeFormat>& to) {
  if (!word) return kBadTimeFormat;
  if (word->is("milliseconds") || word->is("ms")) {
    to = TimeFormat::Milliseconds;
  } else if (word->is("samples")) {
    to = TimeFormat::Samples;
  } else if (word->is("bytes") && type == SoundType::WaveAudio) {
    to = TimeFormat::Bytes;
  } else {
    return kBadTimeFormat;
  }
  return 0;
}

int takeSetItem(const Words& words, std::size_t& index, std::size_t item, SoundType type,
                SetArguments& result) {
  const bool twoWords = item == kTimeFormatItem || item == kFormatTagItem;
  const std::size_t valueAt = index + (twoWords ? 2 : 1);
  const SoundWord* value = valueAt < words.size() ? &words[valueAt] : nullptr;
  index = valueAt + 1;
  if (item == kTimeFormatItem) return takeTimeFormat(value, type, result.timeFormat);
  if (type == SoundType::MpegVideo) return kUnknownCommand;
  result.changesWave = true;
  if (item == kFormatTagItem) return value && value->is("pcm") ? 0 : kUnknownWord;
  return takeWaveNumber(kWaveItems[item], numberAt(words, valueAt), result.wave);
}

struct StatusRow {
  std::string_view first;
  std::string_view second;  ///< empty for an item of one word
  StatusItem item;
  bool ofWaveFormat;
};

constexpr std::array kStatusRows = {
    StatusRow{"length", "", StatusItem::Length, false},
    StatusRow{"position", "", StatusItem::Position, false},
    StatusRow{"mode", "", StatusItem::Mode, false},
    StatusRow{"time", "format", StatusItem::TimeFormat, false},
    StatusRow{"samplespersec", "", StatusItem::SamplesPerSecond, true},
    StatusRow{"bitspersample", "", StatusItem::BitsPerSample, true},
    StatusRow{"channels", "", StatusItem::Channels, true},
    StatusRow{"alignment", "", StatusItem::Alignment, true},
    StatusRow{"bytespersec", "", StatusItem::BytesPerSecond, true},
    StatusRow{"format", "tag", StatusItem::FormatTag, true},
    StatusRow{"media", "present", StatusItem::MediaPresent, false},
    StatusRow{"ready", "", StatusItem::Ready, false},
};

}  // namespace

OpenArguments parseOpen(const Words& words) {
  OpenArguments result;
  for (std::size_t index = 1; index < words.size(); ++index) {
    if (words[index].is("type")) {
      takeValue(result.type, words, ++index, result.code);
      if (!result.type) result.type = "";
    } else if (words[index].is("alias")) {
      takeValue(result.alias, words, ++index, result.code);
    } else {
      takeName(result, words[index]);
    }
  }
  return result;
}

SetArguments parseSet(const Words& words, SoundType type, const WaveFormat& present) {
  SetArguments result;
  result.wave = present;
  std::array<bool, kNoItem> seen{};
  std::size_t index = kAfterAlias;
  while (index < words.size() && result.code == 0) {
    const std::size_t item = setItem(words, index);
    if (item == kNoItem) {
      result.code = kUnknownWord;
    } else if (seen[item]) {
      result.code = kTwice;
    } else {
      seen[item] = true;
      result.code = takeSetItem(words, index, item, type, result);
    }
  }
  return result;
}

RangeArguments parseRange(const Words& words) {
  RangeArguments result;
  for (std::size_t index = kAfterAlias; index < words.size(); index += 2) {
    const bool isFrom = words[index].is("from");
    if (!isFrom && !words[index].is("to")) return {kUnknownWord, {}, {}};
    std::optional<std::int64_t>& end = isFrom ? result.from : result.to;
    if (end) return {kTwice, {}, {}};
    const SoundNumber number = numberAt(words, index + 1);
    if (number.code != 0) return {number.code, {}, {}};
    end = number.value;
  }
  return result;
}

SeekArguments parseSeek(const Words& words) {
  constexpr std::size_t kTarget = kAfterAlias + 1;
  if (words.size() == kAfterAlias) return {kParameterMissing, false, 0};
  if (!words[kAfterAlias].is("to")) return {kUnknownWord, false, 0};
  SeekArguments result;
  if (words.size() > kTarget && words[kTarget].is("end")) {
    result.toEnd = true;
  } else if (words.size() == kTarget || !words[kTarget].is("start")) {
    const SoundNumber number = numberAt(words, kTarget);
    if (number.code != 0) return {number.code, false, 0};
    result.to = number.value;
  }
  if (words.size() > kTarget + 1) {
    return {words[kTarget + 1].is("to") ? kTwice : kUnknownWord, false, 0};
  }
  return result;
}

StatusArguments parseStatus(const Words& words, SoundType type) {
  if (words.size() == kAfterAlias) return {kParameterMissing, {}};
  const auto matches = [&](const StatusRow& row) {
    if (!words[kAfterAlias].is(row.first)) return false;
    return row.second.empty() ||
           (words.size() > kAfterAlias + 1 && words[kAfterAlias + 1].is(row.second));
  };
  const auto* row = std::find_if(kStatusRows.begin(), kStatusRows.end(), matches);
  if (row == kStatusRows.end()) return {kUnknownItem, {}};
  const std::size_t rest = kAfterAlias + (row->second.empty() ? 1 : 2);
  if (words.size() > rest) return {words[rest].is(row->first) ? kTwice : kUnknownWord, {}};
  if (row->ofWaveFormat && type == SoundType::MpegVideo) return {kUnknownCommand, {}};
  return {0, row->item};
}

}  // namespace qv3
