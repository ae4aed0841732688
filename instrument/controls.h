#pragma once

#include <optional>
#include <string>

#include "instrument/commands.h"
#include "instrument/metercore.h"

namespace qv3 {

/// The keys that the main window gives a meaning.
enum class Key {
  Space,
  Insert,
  Up,
  Down,
  C,
  Z,
  F,
  B,
  T,
  R,
  S,
  P,
  O,
  L,
  Less,
  Greater,
  Shift,
  Other
};

/// What became of a key press.
struct KeyResult {
  bool consumed = false;  ///< no control may act on it
  Key key = Key::Other;   ///< of a command that lies outside the instrument: R, S, P, O, L, <, >
};

/// Keyboard and mouse as they act on the instrument itself.
class Controls {
 public:
  explicit Controls(MeterCore& core) : m_core(core) {}

  /// A held key acts once until some key is released; Up and Down act on every press.
  KeyResult keyDown(Key key, const Now& now);

  /// Any key released, or the window's focus lost.
  void keyUp() { m_keyReleased = true; }

  void panelPressed() { m_core.state.SetRequest = true; }
  void bdDown(const Now& now);
  void bdUp();

  /// A press or move in the knob's own coordinates; `button` is a mask, the left button bit 0.
  void knobMouse(double x, double y, int button);

  /// A timer fired.
  void bdHeld();
  void messageOver();

  void turnKnob(int position);

 private:
  void instrumentKey(Key key, const Now& now);
  void toggleBd();
  void zeroBd();
  void toggleFreeze(const Now& now);
  void toggleBodyMotion(const Now& now);
  void showMessage(const std::string& text, const Now& now);

  MeterCore& m_core;
  bool m_keyReleased = false;
};

}  // namespace qv3
