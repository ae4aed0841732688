#include "instrument/controls.h"

#include "display/geometry/knobgeometry.h"
#include "measure/sensitivity.h"

namespace qv3 {
namespace {

bool waitsForNothing(Operation operation) {
  return operation != Operation::Starting && operation != Operation::Probing &&
         operation != Operation::Closing;
}

}  // namespace

KeyResult Controls::keyDown(Key key, const Now& now) {
  if (!waitsForNothing(m_core.operation)) return {true, Key::Other};
  if (key == Key::Up) turnKnob(Go_Up(m_core.settings.KnobPosition));
  if (key == Key::Down) turnKnob(Go_Down(m_core.settings.KnobPosition));
  if (!m_keyReleased) return {key != Key::Other, Key::Other};
  if (key != Key::Shift) m_keyReleased = false;
  instrumentKey(key, now);
  return {key != Key::Other && key != Key::Shift, key};
}

void Controls::instrumentKey(Key key, const Now& now) {
  switch (key) {
    case Key::Space:
    case Key::Insert:
      m_core.state.SetRequest = true;
      break;
    case Key::C:
      toggleBd();
      break;
    case Key::Z:
      zeroBd();
      break;
    case Key::F:
      toggleFreeze(now);
      break;
    case Key::B:
      toggleBodyMotion(now);
      break;
    case Key::T:
      if (m_core.programState() == 3) m_core.countTag();
      break;
    default:
      break;
  }
}

void Controls::turnKnob(int position) {
  m_core.settings.KnobPosition = static_cast<std::int16_t>(position);
  m_core.display.Update_SensKnob(position);
}

void Controls::knobMouse(double x, double y, int button) {
  if (m_core.programState() == 2) return;
  if (const auto index = knob::indexAt(x, y, button)) turnKnob(*index);
}

void Controls::bdDown(const Now& now) {
  if (m_core.programState() != 2) m_core.timers.start(Timer::tmrBdMouseDown, now.steady);
}

void Controls::bdUp() {
  // A timer that fired has zeroed the counter already; the release of that press does nothing.
  if (!m_core.timers.running(Timer::tmrBdMouseDown)) return;
  m_core.timers.stop(Timer::tmrBdMouseDown);
  toggleBd();
}

void Controls::bdHeld() {
  zeroBd();
}

void Controls::toggleBd() {
  m_core.state.BdRunning = !m_core.state.BdRunning;
  m_core.Update_BdDisplay();
}

void Controls::zeroBd() {
  BaseCalculator::zeroBd(m_core.state);
  m_core.Update_BdDisplay();
}

void Controls::toggleFreeze(const Now& now) {
  if (!m_core.message.empty() || m_core.programState() == 2) return;
  m_core.settings.FreezeEnable = !m_core.settings.FreezeEnable;
  showMessage(m_core.settings.FreezeEnable ? "Freeze ON" : "Freeze OFF", now);
  m_core.display.refreshControls();
}

void Controls::toggleBodyMotion(const Now& now) {
  if (!m_core.message.empty()) return;
  m_core.state.BmOff = !m_core.state.BmOff;
  showMessage(m_core.state.BmOff ? "BM OFF" : "BM ON", now);
}

void Controls::showMessage(const std::string& text, const Now& now) {
  m_core.message = text;
  m_core.timers.start(Timer::message, now.steady);
  m_core.Update_ModeDisplay();
}

void Controls::messageOver() {
  m_core.message.clear();
  m_core.Update_ModeDisplay();
}

}  // namespace qv3
