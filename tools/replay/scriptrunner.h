#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "instrument/instrument.h"
#include "settings/programsettings.h"
#include "tools/replay/scriptevent.h"

namespace qv3 {

/// The sound position that a script last gave.
class ScriptSound final : public SoundClock {
 public:
  std::optional<std::int64_t> position() override { return answer; }
  std::optional<std::int64_t> answer;
};

/// Drives an instrument by a script, without a window, a port or a clock. The same script always
/// gives the same lines.
class ScriptRunner {
 public:
  /// `print` gets one JSON object for every receive event, after it was handled.
  explicit ScriptRunner(std::function<void(const nlohmann::ordered_json&)> print);

  /// Carries out one line; throws std::runtime_error with a text for the user where it cannot.
  void run(const std::string& line);

  /// The last recording of the script as a save would write it; empty if nothing was recorded.
  std::vector<std::uint8_t> recording() const;

 private:
  using Handler = void (ScriptRunner::*)(const ScriptEvent&);
  struct Entry;
  static const Entry kHandlers[];

  void meta(const ScriptEvent& event);
  void rx(const ScriptEvent& event);
  void bytes(const ScriptEvent& event);
  void set(const ScriptEvent& event);
  void bdRunning(const ScriptEvent& event);
  void keyUp(const ScriptEvent& event);
  void keyDown(const ScriptEvent& event);
  void key(const ScriptEvent& event);
  void mouse(const ScriptEvent& event);
  void bd(const ScriptEvent& event);
  void knob(const ScriptEvent& event);
  void redraw(const ScriptEvent& event);
  void tick(const ScriptEvent& event);
  void audioPosition(const ScriptEvent& event);
  void record(const ScriptEvent& event);
  void play(const ScriptEvent& event);

  bool setState(const std::string& name, const nlohmann::json& value);
  void setProgramState(int state);
  void receive(const ScriptEvent& event);
  void printState(const ScriptEvent& event);

  std::function<void(const nlohmann::ordered_json&)> m_print;
  ProgramSettings m_settings;
  NoPort m_line;
  CommPort m_port{m_line};
  NoDisplay m_display;
  ScriptSound m_sound;
  Instrument m_instrument;
  Now m_now;
  double m_time = 0;
  double m_timeOfDayOffset = 0;
};

}  // namespace qv3
