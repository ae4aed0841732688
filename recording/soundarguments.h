#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "recording/sounddevice.h"
#include "recording/soundwords.h"

namespace qv3 {

// The words behind verb and alias. Every `code` is 0 or the code of the first word that is wrong.

/// The words of `open`; their order is free.
struct OpenArguments {
  int code = 0;
  std::optional<SoundWord> name;
  bool isNew = false;  ///< the keyword `new`, or an empty name
  std::optional<std::string> type;
  std::optional<std::string> alias;
};
OpenArguments parseOpen(const std::vector<SoundWord>& words);

/// The words of `set`; their order is free.
struct SetArguments {
  int code = 0;
  std::optional<TimeFormat> timeFormat;
  bool changesWave = false;
  WaveFormat wave;  ///< the present one with what is changed
};
SetArguments parseSet(const std::vector<SoundWord>& words, SoundType type,
                      const WaveFormat& present);

/// `from` and `to` of `play` and `delete`.
struct RangeArguments {
  int code = 0;
  std::optional<std::int64_t> from;
  std::optional<std::int64_t> to;
};
RangeArguments parseRange(const std::vector<SoundWord>& words);

/// `to start`, `to end` or `to <n>`.
struct SeekArguments {
  int code = 0;
  bool toEnd = false;
  std::int64_t to = 0;
};
SeekArguments parseSeek(const std::vector<SoundWord>& words);

enum class StatusItem {
  Length,
  Position,
  Mode,
  TimeFormat,
  SamplesPerSecond,
  BitsPerSample,
  Channels,
  Alignment,
  BytesPerSecond,
  FormatTag,
  MediaPresent,
  Ready,
};
struct StatusArguments {
  int code = 0;
  StatusItem item = StatusItem::Mode;
};
StatusArguments parseStatus(const std::vector<SoundWord>& words, SoundType type);

}  // namespace qv3
