#pragma once

#include <cstdint>
#include <optional>

#include "instrument/instrument.h"
#include "recording/player.h"
#include "recording/sessionsound.h"

namespace qv3 {

/// What a playback shows beside the instrument. Called from `PlayControl`'s own calls.
class PlayEvents {
 public:
  virtual ~PlayEvents() = default;

  virtual void showPlayTime(std::int64_t seconds) = 0;
  /// `place` (0..1000) on the position bar up to which was played.
  virtual void showProgress(const PlayRange& range, double place) = 0;
  /// Seconds since the midnight before the session's start; 86400 and more on later days.
  virtual void showSessionClock(std::int64_t seconds) = 0;
  /// Stopped, by the user or at the end of its range.
  virtual void playbackEnded() = 0;
};

/// Plays a session on the instrument. Told the time by `poll`, every few milliseconds while it
/// plays and every 20 to 50 while it is paused.
class PlayControl final : private PlayerView {
 public:
  /// All references must outlive this.
  PlayControl(Instrument& instrument, MediaPort& media, PlayEvents& events);

  /// Another session; `records` must outlive it. `unitsPerSecond` are those of its open sound
  /// device, `audible` is false where it has none that plays.
  void load(const RecordBuffer& records, const std::optional<SessionStart>& start,
            std::int32_t unitsPerSecond, bool audible);

  /// The same session with its device opened again.
  void attach(std::int32_t unitsPerSecond, bool audible) {
    m_sound.attach(unitsPerSecond, audible);
  }

  /// The Play button: starts, pauses, resumes.
  void play(const Now& now);
  void stop(const Now& now);
  void skip(bool forward, const Now& now);
  void seekTo(int x, const Now& now);
  void setRange(int fromX, int toX) { m_player.setRange(fromX, toX); }
  void wholeRange() { m_player.wholeRange(); }

  void poll(const Now& now);

  const Player& player() const { return m_player; }

 private:
  void firstRecord() override;
  void jumped() override { m_instrument.forgetLastRecord(); }
  void showRecord(const SampleRecord& record) override { m_instrument.show(record, m_now); }
  void loopRestarted() override;
  void showPlayTime(std::int64_t seconds) override { m_events.showPlayTime(seconds); }
  void showProgress(const PlayRange& range, double place) override {
    m_events.showProgress(range, place);
  }
  void showSessionClock(std::int64_t seconds) override { m_events.showSessionClock(seconds); }
  bool lagLampLit() const override;
  void setLagLamp(bool lit) override;
  void playedToEnd() override { stop(m_now); }

  Instrument& m_instrument;
  PlayEvents& m_events;
  SessionSound m_sound;
  Player m_player;
  Now m_now;
};

}  // namespace qv3
