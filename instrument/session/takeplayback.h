#pragma once

#include <cstdint>
#include <functional>

#include "instrument/playcontrol.h"
#include "instrument/session/sessionstate.h"

namespace qv3 {

/// Plays the take and shows where it is.
class TakePlayback final : private PlayEvents {
 public:
  /// `ended` hears of the end of every playback.
  TakePlayback(SessionState& state, std::function<void()> ended);

  /// The state's take is another one, its sound device open: `unitsPerSecond` of it, `audible`
  /// false where it does not play.
  void takeReady(std::int32_t unitsPerSecond, bool audible);
  /// There is nothing to play.
  void takeGone();

  void cmdPlay(const Now& now);
  void stop(const Now& now) { m_control.stop(now); }
  void skip(bool forward, const Now& now);
  void seekTo(int x, const Now& now);
  void setRange(int fromX, int toX);
  void wholeRange();
  void showRange();
  void poll(const Now& now) { m_control.poll(now); }

  PlayControl& control() { return m_control; }

 private:
  void reopenSound();
  void showPlayTime(std::int64_t seconds) override;
  void showProgress(const PlayRange& range, double place) override;
  void showSessionClock(std::int64_t seconds) override;
  void playbackEnded() override;

  SessionState& m_state;
  std::function<void()> m_ended;
  PlayControl m_control;
  RecordBuffer m_none;
};

}  // namespace qv3
