#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "recording/sound/disciplinedclock.h"
#include "recording/sound/soundbackend.h"
#include "recording/sound/soundreader.h"
#include "recording/sound/streamoffset.h"

namespace qv3 {

/// One stretch of playing, from `play` to the next command or the end. Its clock starts with the
/// command and is the position; the sound is put where the clock will be when it is heard: what
/// comes too late, at the start and after a stall, is skipped.
class PlaybackRun final : public PlaybackFeed {
 public:
  /// Plays frames `from` up to `end`; without `end` for ever, as a clock alone.
  PlaybackRun(std::shared_ptr<SoundReader> reader, std::int64_t from,
              std::optional<std::int64_t> end, SoundTime now);

  // For the owner of the position.
  std::int64_t position(SoundTime now);
  bool atEnd(SoundTime now);
  void setEnd(std::optional<std::int64_t> end);
  std::optional<std::int64_t> end() const;
  /// No more sound.
  void cancel() { m_cancelled = true; }

  StreamFormat format() const override;
  bool wanted(SoundTime now) override;
  void streamStarted() override;
  void fill(SoundTime now, std::span<std::int16_t> to) override;
  void heard(SoundTime now, std::chrono::microseconds stream) override;

 private:
  /// From stream frame `stream` on frame `sound` and its followers are heard, or silence.
  struct Stretch {
    std::int64_t stream = 0;
    std::int64_t sound = 0;
    bool silent = false;
  };

  std::int64_t clockFrame(double seconds) const;
  void align(SoundTime now);
  void moveSound(std::int64_t desired);
  void fillSound(std::span<std::int16_t> to);
  const Stretch* stretchAt(double streamFrame);

  const std::shared_ptr<SoundReader> m_reader;
  const std::uint32_t m_rate;
  DisciplinedClock m_clock;
  std::atomic<bool> m_cancelled = false;

  mutable std::mutex m_mutex;  ///< position and end
  std::int64_t m_lastPosition;
  std::optional<std::int64_t> m_end;

  // Of the sound thread alone.
  bool m_started = false;
  bool m_aligned = false;
  std::int64_t m_written = 0;  ///< frames of the stream
  std::int64_t m_next = 0;     ///< frame of the sound that is written next
  std::int64_t m_silence = 0;  ///< frames of it to be written before
  std::deque<Stretch> m_stretches;
  StreamOffset m_offset;
};

}  // namespace qv3
