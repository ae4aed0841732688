#pragma once

#include <span>
#include <string_view>

#include "instrument/commands.h"
#include "instrument/controls.h"

namespace qv3 {

/// What choosing a menu item does. Every one but `Menu` and `Separator` has a handler.
enum class Act {
  Menu,  ///< opens a submenu
  Separator,
  Choose,      ///< the setting takes the row's value
  Toggle,      ///< the setting takes its other value
  PickColour,  ///< the colour chooser decides the setting's value
  DefaultColours,
  LoadSettings,
  SaveSettings,
  SaveSettingsAs,
  Exit,
  Connect,
  Port,
  SensorLocal,
  SensorRemote,
  NeedleTest,
  TestControl,
  TestBeep,
  TestSpeed,  ///< the row's value is the time of a record in ms
  MeterStyle,
  ViewRecording,
  RecordingSetup,
  Audio,  ///< sound is switched to the row's value
  About,
  Help
};

/// How an item's check mark follows its setting.
enum class Mark {
  None,
  Follow,  ///< set if and only if the setting has the row's value
  Keep,    ///< set when the setting has the value; only choosing another item of the menu clears it
  Port,    ///< the port in use
  Test,    ///< beep and speed of the test mode
  Sensor   ///< the sensor that the meter reported
};

/// One menu item. An item without a caption is never visible.
struct MenuRow {
  std::string_view menu;  ///< name of the menu that it stands in; empty is the menu bar
  std::string_view name;  ///< object name, unique
  std::string_view caption;
  Act act;
  Command command;              ///< asked whether the item is enabled
  std::string_view key = {};    ///< setting
  std::string_view value = {};  ///< of the setting, as the settings file spells it
  Mark mark = Mark::None;
};

/// The menu bar in the order in which it reads; a menu's row comes before those of its items.
std::span<const MenuRow> menuRows();

/// nullptr if there is none of that name.
const MenuRow* findMenuRow(std::string_view name);

/// One key of the main window. `code` is the toolkit's, which for letters and signs is the
/// character, upper case.
struct KeyRow {
  int code;
  bool shift;  ///< only with Shift; otherwise Shift makes no difference
  Key key;
};

std::span<const KeyRow> keyRows();

/// What the key means; `Key::Other` for those without a row.
Key keyFor(int code, bool shift);

}  // namespace qv3
