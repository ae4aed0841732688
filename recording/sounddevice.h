#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "recording/soundclock.h"

namespace qv3 {

/// What a file is opened as: in bytes of its sound where wanted, or in milliseconds only.
enum class SoundType { WaveAudio, MpegVideo };

enum class SoundMode { Stopped, Playing, Paused, Recording };

/// The unit of every position and length that is told and taken.
enum class TimeFormat { Milliseconds, Bytes, Samples };

/// Integer PCM. `bytesPerSecond` and `alignment` are what they were set to; nothing is computed
/// from them.
struct WaveFormat {
  std::uint32_t samplesPerSecond = 11025;
  std::uint32_t channels = 1;
  std::uint32_t bitsPerSample = 8;  ///< 8, 16, 24 or 32
  std::uint32_t bytesPerSecond = 11025;
  std::uint32_t alignment = 1;

  /// Bytes of one sample of all channels.
  std::uint32_t blockSize() const { return channels * bitsPerSample / 8; }

  bool operator==(const WaveFormat&) const = default;
};

/// How a request to the device ended. On anything but Done device and sound stay as they were.
enum class SoundResult {
  Done,
  Closed,           ///< nothing is open
  InUse,            ///< something is open
  NotFound,         ///< no such file; at a save: no such folder
  Unreadable,       ///< the file cannot be played as what it was asked to be
  WrongOrder,       ///< not in this state
  OutOfRange,       ///< a position beyond the sound, or a start beyond its end
  NotSupported,     ///< not with this type
  WrongTimeFormat,  ///< the type does not know this unit
  CannotWrite,      ///< disk full, no permission, no spool
};

/// A copy of the sound on its way to a file. The file is written under another name beside it and
/// gets its own at the end; given up before that, nothing remains of it.
class SoundSave {
 public:
  enum class State { Saving, Done, Failed };

  virtual ~SoundSave() = default;

  /// Writes the next piece, about a megabyte.
  virtual State step() = 0;
  virtual State state() const = 0;
  /// 0 to 1.
  virtual double progress() const = 0;
  /// The reason in words, once failed.
  virtual const std::string& error() const = 0;
};

/// Where the recorded bytes lie: `length` of them from `offset` in the file `path`.
struct SpoolPlace {
  std::string path;
  std::uint64_t offset = 0;
  std::uint64_t length = 0;

  bool operator==(const SpoolPlace&) const = default;
};

/// The sound device: plays a file, records the room, and is the clock of every session. One thing
/// is open at a time; opened, it is stopped at 0 and speaks in milliseconds. No call waits for
/// sound. While it plays or records its position rises in real time, whatever the sound server
/// does.
class SoundDevice : public SoundClock {
 public:
  [[nodiscard]] virtual SoundResult openFile(const std::string& path, SoundType type) = 0;
  /// An empty device to record with: 11025 Hz, 8 bit, mono.
  [[nodiscard]] virtual SoundResult openNew() = 0;
  /// What was recorded stays in its spool file.
  virtual void close() = 0;

  virtual bool isOpen() const = 0;
  virtual SoundType type() const = 0;

  virtual TimeFormat timeFormat() const = 0;
  [[nodiscard]] virtual SoundResult setTimeFormat(TimeFormat format) = 0;
  virtual WaveFormat waveFormat() const = 0;
  /// Only for a new device that has recorded nothing.
  [[nodiscard]] virtual SoundResult setWaveFormat(const WaveFormat& format) = 0;

  /// From the end of what was recorded.
  [[nodiscard]] virtual SoundResult record() = 0;
  /// Without `from`: from where it stands; without `to`: to the end.
  [[nodiscard]] virtual SoundResult play(std::optional<std::int64_t> from,
                                         std::optional<std::int64_t> to) = 0;
  [[nodiscard]] virtual SoundResult pause() = 0;
  [[nodiscard]] virtual SoundResult resume() = 0;
  [[nodiscard]] virtual SoundResult stop() = 0;
  [[nodiscard]] virtual SoundResult seek(std::int64_t to) = 0;
  [[nodiscard]] virtual SoundResult seekToEnd() = 0;

  /// Takes recorded sound out; without `from`: from where it stands, without `to`: to the end.
  [[nodiscard]] virtual SoundResult removeRange(std::optional<std::int64_t> from,
                                                std::optional<std::int64_t> to) = 0;

  /// A complete ".wav" of what was recorded, or a copy of the opened file.
  [[nodiscard]] virtual SoundResult save(const std::string& path) = 0;
  struct SaveStart {
    SoundResult result = SoundResult::Done;
    std::unique_ptr<SoundSave> save;  ///< there if the result is Done
  };
  /// The same in steps; what is open must stay so meanwhile.
  [[nodiscard]] virtual SaveStart startSave(const std::string& path) = 0;

  virtual SoundMode mode() = 0;
  virtual std::int64_t length() = 0;

  /// Nothing before the first `record`. Answers for the last recording after `close` too.
  virtual std::optional<SpoolPlace> spool() const = 0;
  /// Why the running or last recording could not write its sound, in words; empty if it could.
  virtual std::string failure() const = 0;
};

}  // namespace qv3
