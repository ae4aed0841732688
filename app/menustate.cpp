#include "app/menustate.h"

#include "settings/conversions.h"
#include "settings/settingsrows.h"

namespace qv3 {
namespace {

int numberOf(const MenuRow& row) {
  return static_cast<int>(toLong(row.value).value_or(0));
}

/// Numbers are compared as such: the file may spell 3 as "3.0".
bool hasValue(const ProgramSettings& settings, const MenuRow& row) {
  const SettingRow* setting = findSetting(row.key);
  if (setting == nullptr) return false;
  const std::string text = textOf(settings, *setting);
  if (text == row.value) return true;
  const auto number = toLong(text);
  return number && number == toLong(row.value);
}

}  // namespace

bool MenuState::enabled(const MenuRow& row) const {
  return allowed(row.command, situation);
}

bool MenuState::visible(const MenuRow& row) const {
  if (row.caption.empty()) return false;
  if (row.name == "mnuRecording") return settings.RecordVisible;
  if (row.act != Act::Port) return true;
  const int port = numberOf(row);
  return port == 0 || ports.exists(port);
}

bool MenuState::checked(const MenuRow& row) const {
  switch (row.mark) {
    case Mark::None:
      return false;
    case Mark::Follow:
      return hasValue(settings, row);
    case Mark::Keep:  // a mark from before the settings were loaded would stay
      return situation.operation != Operation::Starting && hasValue(settings, row);
    case Mark::Port:
      return portInUse(numberOf(row));
    case Mark::Test:
      return row.act == Act::TestBeep ? testBeeps : testPeriod == numberOf(row);
    case Mark::Sensor:
      return sensor == (row.act == Act::SensorLocal ? SensorMark::Local : SensorMark::Remote);
  }
  return false;
}

/// A port that was chosen but has no meter is not in use.
bool MenuState::portInUse(int port) const {
  return settings.ComPort == port && (port == 0 || situation.meterFound);
}

std::string MenuState::caption(const MenuRow& row) const {
  if (row.act == Act::NeedleTest && needleTest) return "Needle Test - Stop";
  if (row.act == Act::TestControl && situation.operation == Operation::Testing) return "Stop";
  return std::string(row.caption);
}

std::string MenuState::toolTip(const MenuRow& row) const {
  return row.act == Act::Port ? ports.path(numberOf(row)) : std::string();
}

}  // namespace qv3
