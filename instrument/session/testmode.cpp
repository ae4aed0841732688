#include "instrument/session/testmode.h"

#include <optional>
#include <utility>

#include "instrument/session/takesound.h"
#include "recording/testsignal.h"

namespace qv3 {

TestMode::TestMode(SessionState& state, std::function<void()> discarded)
    : m_state(state), m_discarded(std::move(discarded)), m_sound(state.world.media) {}

void TestMode::control(const Now& now) {
  if (!m_state.instrument().allowed(Command::TestMode)) return;
  if (m_state.instrument().operation() == Operation::Testing) {
    stop(now);
  } else {
    m_state.confirmDiscard(Command::TestMode, [this] { begin(m_state.world.now()); });
  }
}

/// Nothing is discarded for a test that has no clock.
void TestMode::begin(const Now& now) {
  m_state.world.media.send("close WavFile");
  const auto track = openTimingTrack(m_state);
  if (!track) return;
  m_state.dropTake();
  m_discarded();
  m_records = testSignal();
  m_index = 1;
  m_due = 0;
  m_sound.attach(track->unitsPerSecond, track->audible);
  m_state.instrument().startTest(now);
  m_state.view().hideClock();  // it would stand still
  m_sound.play(now.steady);
  m_state.view().refreshTransport();
}

void TestMode::stop(const Now& now) {
  if (m_state.instrument().operation() != Operation::Testing) return;
  m_sound.stop(now.steady);
  m_state.world.media.send("close WavFile");
  m_records.clear();
  m_state.instrument().stopPlayback(now);
  m_state.view().showClock(std::nullopt);
  m_state.view().refreshTransport();
}

/// The sound is the clock: records are due on its grid, and those that a late poll finds overdue
/// are left out, as in playback.
void TestMode::poll(const Now& now) {
  if (m_state.instrument().operation() != Operation::Testing) return;
  const std::int64_t time = m_sound.position(now.steady) * 1000 / m_sound.unitsPerSecond();
  const std::int64_t passed = (time - m_due) / period;
  if (passed < 1) return;
  m_due += passed * period;
  m_index += static_cast<std::size_t>(passed);
  const bool wrapped = m_index > m_records.count();
  m_index = (m_index - 1) % m_records.count() + 1;
  if (wrapped && beeps) m_state.world.beep();
  m_state.instrument().showTest(m_records.at(m_index).NeedleShown);
}

}  // namespace qv3
