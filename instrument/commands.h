#pragma once

#include "instrument/operation.h"

namespace qv3 {

/// Everything a user can ask for, by button, menu item, key or mouse.
enum class Command {
  Record,
  Stop,
  Play,
  Skip,
  Loop,
  Load,
  Save,
  SaveFileAs,
  PositionLeft,
  PositionRight,
  Tag,
  Set,
  Knob,
  KnobMouse,
  BdKeys,
  BdMouse,
  Freeze,
  BodyMotionAlert,
  LoadSettings,
  SaveSettings,
  Connect,
  Sensor,
  NeedleTest,
  TestMode,
  ViewRecording,
  MeterStyle,
  RecordingSetup,
  NeedleBdCounter,
  Preference,  ///< colours, widths, alerts, graph, help: whatever only changes how things look
  Exit
};

/// What the answer to a command depends on.
struct Situation {
  Operation operation = Operation::None;
  bool meterFound = false;
  bool sessionLoaded = false;
  bool unsaved = false;
  int recordingMode = 2;
  bool savePathChosen = false;
  bool sensorModel = false;     ///< a model "31" is connected
  bool traditionalDial = true;  ///< dial type 1
  bool recordingPanel = true;   ///< shown
};

/// Whether the command acts now. Buttons, menu items, keys and the transport panel all ask here.
bool allowed(Command command, const Situation& situation);

}  // namespace qv3
