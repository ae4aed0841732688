#pragma once

#include <cstdint>
#include <string>

#include "measure/colour.h"

namespace qv3 {

/// One move of the needle.
struct NeedleMove {
  std::int32_t position = 0;  ///< 1/65536 of a turn from straight up, clockwise
  Colour colour = 0;
  bool faceFresh = false;  ///< the face was just drawn: nothing to erase
};

/// What the mode line shows.
struct ModeLine {
  std::string word;    ///< "LINK", "PLAY", "PAUSE", "RECORD" or blank
  std::string status;  ///< or a message that lies over it
  Colour colour = 0;
  bool audioOff = false;
};

/// Which sensor item of the menu is checked.
enum class SensorMark { None, Local, Remote };

/// The surfaces of the instrument, as the core moves them. Colours, widths and dial types that a
/// call does not name are those of the settings at the time of the call.
class MeterDisplay {
 public:
  virtual ~MeterDisplay() = default;

  virtual void Draw_Panel() = 0;  ///< the face afresh; its read-outs follow in calls of their own
  virtual void moveNeedle(const NeedleMove& move) = 0;
  virtual void Remove_Needle() = 0;
  virtual void Update_LED(Colour colour) = 0;
  virtual void Update_BaseDisplay(const std::string& text) = 0;
  virtual void Update_BdDisplay(const std::string& text, bool running) = 0;
  virtual void Update_ModeDisplay(const ModeLine& line) = 0;
  virtual void Update_SensKnob(int position) = 0;
  virtual void Update_Clock() = 0;
  virtual void Update_Graph(std::int32_t reading) = 0;
  virtual void rebuildGraph() = 0;       ///< the time scale of the graph was chosen
  virtual void updateBackColours() = 0;  ///< of the window and the graph
  virtual void layoutWindow() = 0;
  virtual void showTagCount(std::int32_t count) = 0;
  virtual void showRecordTime(std::int32_t seconds) = 0;
  virtual void refreshControls() = 0;  ///< check marks, enabling, captions
};

/// Shows nothing.
class NoDisplay : public MeterDisplay {
 public:
  void Draw_Panel() override {}
  void moveNeedle(const NeedleMove&) override {}
  void Remove_Needle() override {}
  void Update_LED(Colour) override {}
  void Update_BaseDisplay(const std::string&) override {}
  void Update_BdDisplay(const std::string&, bool) override {}
  void Update_ModeDisplay(const ModeLine&) override {}
  void Update_SensKnob(int) override {}
  void Update_Clock() override {}
  void Update_Graph(std::int32_t) override {}
  void rebuildGraph() override {}
  void updateBackColours() override {}
  void layoutWindow() override {}
  void showTagCount(std::int32_t) override {}
  void showRecordTime(std::int32_t) override {}
  void refreshControls() override {}
};

}  // namespace qv3
