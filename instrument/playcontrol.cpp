#include "instrument/playcontrol.h"

namespace qv3 {

PlayControl::PlayControl(Instrument& instrument, MediaPort& media, PlayEvents& events)
    : m_instrument(instrument), m_events(events), m_sound(media), m_player(m_sound, *this) {}

void PlayControl::load(const RecordBuffer& records, const std::optional<SessionStart>& start,
                       std::int32_t unitsPerSecond, bool audible) {
  m_sound.attach(unitsPerSecond, audible);
  m_player.load(records, start ? start->secondsOfDay : 0);
}

void PlayControl::play(const Now& now) {
  m_now = now;
  switch (m_player.state()) {
    case Player::State::Stopped:
      m_instrument.startPlayback(now);
      m_instrument.core().lampOff();
      m_instrument.core().showStatus("Playback");
      m_player.start(now.steady);
      break;
    case Player::State::Playing:
      m_player.pause(now.steady);
      m_instrument.setOperation(Operation::Paused);
      break;
    case Player::State::Paused:
      m_player.resume(now.steady);
      m_instrument.setOperation(Operation::Playing);
      break;
  }
}

void PlayControl::stop(const Now& now) {
  if (m_player.state() == Player::State::Stopped) return;
  m_player.stop(now.steady);
  m_instrument.stopPlayback(now);
  m_events.playbackEnded();
}

void PlayControl::skip(bool forward, const Now& now) {
  m_now = now;
  m_player.skip(forward, now.steady);
}

void PlayControl::seekTo(int x, const Now& now) {
  m_now = now;
  m_player.seekTo(x, now.steady);
}

void PlayControl::poll(const Now& now) {
  m_now = now;
  m_player.poll(now.steady, m_instrument.core().LagLimit,
                m_instrument.core().settings.PlayLoopEnable);
}

void PlayControl::firstRecord() {
  m_instrument.restartNeedle();
}

void PlayControl::loopRestarted() {
  m_instrument.restartPicture();
}

bool PlayControl::lagLampLit() const {
  return m_instrument.core().lamp() == Lamp::Lag;
}

void PlayControl::setLagLamp(bool lit) {
  MeterCore& core = m_instrument.core();
  core.Update_LED(lit ? core.settings.LED_Lag_Color : core.settings.Dial_Color);
}

}  // namespace qv3
