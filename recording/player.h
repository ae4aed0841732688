#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "recording/recordbuffer.h"
#include "recording/sessionsound.h"

namespace qv3 {

/// The part of the session that is played, in records and as places on the position bar.
struct PlayRange {
  static constexpr int kBarWidth = 1000;
  static constexpr std::size_t kShortest = 50;

  std::size_t start = 1;
  std::size_t end = 1;
  int startMarker = 0;
  int endMarker = kBarWidth;
};

/// Where playback meets the instrument and the transport panel.
class PlayerView {
 public:
  virtual ~PlayerView() = default;

  /// The next record shown is the first after the start, a loop or a click on the position bar.
  virtual void firstRecord() = 0;
  /// The next record shown applies all its fields.
  virtual void jumped() = 0;
  virtual void showRecord(const SampleRecord& record) = 0;
  virtual void loopRestarted() = 0;
  virtual void showPlayTime(std::int64_t seconds) = 0;
  /// `place` on the position bar up to which was played.
  virtual void showProgress(const PlayRange& range, double place) = 0;
  /// Seconds since the midnight before the session's start.
  virtual void showSessionClock(std::int64_t seconds) = 0;
  virtual bool lagLampLit() const = 0;
  virtual void setLagLamp(bool lit) = 0;
  /// The range is over, or the sound: as if Stop were pressed.
  virtual void playedToEnd() = 0;
};

/// Releases the records of a session in step with its sound: the sound is the clock. Told the time;
/// `poll` is called every few milliseconds while a playback runs, every 20 to 50 while it is
/// paused.
class Player {
 public:
  using Instant = std::chrono::microseconds;

  enum class State { Stopped, Playing, Paused };

  Player(SessionSound& sound, PlayerView& view) : m_sound(sound), m_view(view) {}

  /// Another session; `records` must outlive it. `startSeconds` is its start's time of day, 0 if it
  /// has none. The whole session is the range.
  void load(const RecordBuffer& records, std::int32_t startSeconds);

  State state() const { return m_state; }
  std::size_t playIndex() const { return m_index; }
  const PlayRange& range() const { return m_range; }
  /// Places on the bar between the markers of the shortest range; at least 1.
  int shortestRange() const;
  std::int32_t totalTime() const;

  void start(Instant now);
  void pause(Instant now);
  void resume(Instant now);
  void stop(Instant now);

  void poll(Instant now, int lagLimit, bool loop);

  void skip(bool forward, Instant now);

  /// A click on the bar at `x` (0..1000) while playing; outside the range it does nothing.
  void seekTo(int x, Instant now);
  /// A drag over the bar while stopped; one without movement changes nothing.
  void setRange(int fromX, int toX);
  void wholeRange();

 private:
  bool takeNext(Instant now, bool loop);
  bool soundReached(Instant now);
  void noteLag(Instant now, int lagLimit);
  void endLag(Instant now);
  void showSecond();
  void showClock(std::int64_t second);
  void restartLoop(Instant now);
  void seekToRangeStart(Instant now);
  void resumeAfterSkip(Instant now);
  void showBar();
  std::size_t recordAt(int x) const;
  std::int32_t timeOf(std::size_t number) const { return m_records->at(number).Time; }
  double soundTime() const;

  SessionSound& m_sound;
  PlayerView& m_view;
  const RecordBuffer* m_records = nullptr;
  std::int32_t m_startSeconds = 0;
  PlayRange m_range;
  State m_state = State::Stopped;
  std::size_t m_index = 1;
  bool m_firstRecord = false;
  std::optional<SampleRecord> m_pending;  ///< waits for the sound
  std::int64_t m_position = 0;
  std::int64_t m_displayedSecond = 0;
  std::optional<std::int64_t> m_clockMinute;  ///< last shown
  int m_catchUp = 0;
  std::optional<Instant> m_lagSince;
  std::optional<Instant> m_skipDue;  ///< when the sound goes on after the last skip
};

}  // namespace qv3
