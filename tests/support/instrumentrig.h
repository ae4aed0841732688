#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "instrument/instrument.h"
#include "settings/settingsrows.h"
#include "tools/replay/scriptrunner.h"

namespace qv3::test {

/// Writes down what the instrument shows.
class DisplayLog final : public NoDisplay {
 public:
  void Draw_Panel() override { ++panels; }
  void moveNeedle(const NeedleMove& move) override { needles.push_back(move); }
  void Remove_Needle() override { ++wipes; }
  void Update_LED(Colour colour) override { lamp = colour; }
  void Update_BdDisplay(const std::string& text, bool) override { bd = text; }
  void Update_ModeDisplay(const ModeLine& line) override { mode = line; }
  void Update_SensKnob(int position) override { knob = position; }
  void Update_Graph(std::int32_t reading) override { graph.push_back(reading); }

  int panels = 0;
  int wipes = 0;
  int knob = -1;
  Colour lamp = -1;
  std::string bd;
  ModeLine mode;
  std::vector<NeedleMove> needles;
  std::vector<std::int32_t> graph;
};

/// An instrument with default settings and a told clock.
struct InstrumentRig {
  ProgramSettings settings = [] {
    ProgramSettings fresh;
    for (const SettingRow& row : settingsRows()) setFromText(fresh, row, row.defaultText);
    fresh.ComPort = 1;
    return fresh;
  }();
  NoPort line;
  CommPort port{line};
  DisplayLog display;
  ScriptSound sound;
  Instrument instrument{settings, port, display, sound};
  Now now{Instant{0}, 43200};

  void connect(const std::string& model = "3A") {
    instrument.core().state.MeterVersion = model;
    instrument.connected(6, now);
  }

  void wait(std::chrono::milliseconds time) {
    now.steady += time;
    now.timeOfDay += std::chrono::duration<double>(time).count();
    instrument.advance(now);
  }

  /// Characters, 20 ms after the last.
  void receive(std::string_view characters) {
    wait(std::chrono::milliseconds{20});
    port.charactersArrived(characters);
    instrument.receive(now);
  }

  void set(std::string_view key, const SettingValue& value) {
    setSetting(settings, key, value);
    instrument.settingChanged(key, now);
  }

  void key(Key pressed) {
    instrument.keyUp(now);
    instrument.keyDown(pressed, now);
    instrument.keyUp(now);
  }
};

}  // namespace qv3::test
