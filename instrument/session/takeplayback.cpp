#include "instrument/session/takeplayback.h"

#include <utility>

#include "instrument/session/takesound.h"

namespace qv3 {
namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

BarRange barRange(const PlayRange& range) {
  return {range.startMarker, range.endMarker};
}

}  // namespace

TakePlayback::TakePlayback(SessionState& state, std::function<void()> ended)
    : m_state(state),
      m_ended(std::move(ended)),
      m_control(state.instrument(), state.world.media, *this) {}

void TakePlayback::takeReady(std::int32_t unitsPerSecond, bool audible) {
  m_control.load(m_state.take.records, m_state.take.start, unitsPerSecond, audible);
  showRange();
  m_state.view().showPlayTime(0);
}

void TakePlayback::takeGone() {
  m_control.load(m_none, std::nullopt, 1000, false);
}

void TakePlayback::cmdPlay(const Now& now) {
  const bool stopped = m_control.player().state() == Player::State::Stopped;
  if (stopped) {
    if (!m_state.instrument().allowed(Command::Play)) return;
    m_state.view().showTag("");
    reopenSound();
    // The present time would stand still there, and be taken for the session's.
    const auto& start = m_state.take.start;
    if (!start || start->secondsOfDay == 0) m_state.view().hideClock();
  }
  m_control.play(now);
  m_state.view().refreshTransport();
}

/// The device may have been closed since the take was made: test mode, a hidden panel.
void TakePlayback::reopenSound() {
  if (m_state.world.media.send("status WavFile mode").ok()) return;
  const OpenedSound sound = openTakeSound(m_state, m_state.take);
  m_control.attach(sound.unitsPerSecond, sound.audible);
}

void TakePlayback::skip(bool forward, const Now& now) {
  if (m_state.instrument().allowed(Command::Skip)) m_control.skip(forward, now);
}

void TakePlayback::seekTo(int x, const Now& now) {
  if (m_state.instrument().programState() == 2) m_control.seekTo(x, now);
}

void TakePlayback::setRange(int fromX, int toX) {
  if (!m_state.instrument().allowed(Command::PositionLeft)) return;
  m_control.setRange(fromX, toX);
  showRange();
}

void TakePlayback::wholeRange() {
  if (!m_state.instrument().allowed(Command::PositionRight)) return;
  m_control.wholeRange();
  showRange();
}

void TakePlayback::showRange() {
  const Player& player = m_control.player();
  m_state.view().showBar({BarFace::Range, barRange(player.range()), {}, player.shortestRange()});
}

void TakePlayback::showPlayTime(std::int64_t seconds) {
  m_state.view().showPlayTime(seconds);
}

void TakePlayback::showProgress(const PlayRange& range, double place) {
  m_state.view().showBar({BarFace::Range, barRange(range), place});
}

void TakePlayback::showSessionClock(std::int64_t seconds) {
  if (!m_state.take.start) return;
  m_state.view().showClock(
      SessionClock{seconds % kSecondsPerDay, m_state.take.start->day + seconds / kSecondsPerDay});
}

void TakePlayback::playbackEnded() {
  m_state.view().showClock(std::nullopt);
  showRange();
  m_state.view().refreshTransport();
  m_ended();
}

}  // namespace qv3
