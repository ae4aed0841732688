#include "app/commandtable.h"

#include <QtCore/qnamespace.h>

#include <algorithm>
#include <array>

namespace qv3 {
namespace {

// Short names, so that a row stays one line.
constexpr Command kPref = Command::Preference;
constexpr Act kMenu = Act::Menu;
constexpr Act kChoose = Act::Choose;
constexpr Act kColour = Act::PickColour;
constexpr Mark kFollow = Mark::Follow;

constexpr MenuRow kFileRows[] = {
    {"", "mnuFile", "&File", kMenu, Command::Exit},
    {"mnuFile", "mnuLoadSettings", "&Load Settings", Act::LoadSettings, Command::LoadSettings},
    {"mnuFile", "mnuSaveSettings", "Save Settings", Act::SaveSettings, Command::SaveSettings},
    {"mnuFile", "mnuSaveSettingsAs", "Save Settings &As", Act::SaveSettingsAs,
     Command::SaveSettings},
    {"mnuFile", "mnuExit", "E&xit", Act::Exit, Command::Exit},
};

constexpr MenuRow kColourRows[] = {
    {"", "mnuSettings", "&Settings", kMenu, kPref},
    {"mnuSettings", "mnuSetCol", "&Colours", kMenu, kPref},
    {"mnuSetCol", "mnuSetColPanel", "Panel", kColour, kPref, "Panel_Color"},
    {"mnuSetCol", "mnuSetColDial", "Dial Face", kColour, kPref, "Dial_Color"},
    {"mnuSetCol", "mnuSetColNeedle", "Needle", kMenu, kPref},
    {"mnuSetColNeedle", "mnuSetColNeedleMain", "Main", kColour, kPref, "MainNeedle_Color"},
    {"mnuSetColNeedle", "mnuSetColNeedleShadow", "Shadow", kMenu, kPref},
    {"mnuSetColNeedleShadow", "mnuSetColNeedleShadow_Index_0", "Off", kChoose, kPref,
     "ShadowNeedleColor_Index", "0", kFollow},
    {"mnuSetColNeedleShadow", "mnuSetColNeedleShadow_Index_1", "1", kChoose, kPref,
     "ShadowNeedleColor_Index", "1", kFollow},
    {"mnuSetColNeedleShadow", "mnuSetColNeedleShadow_Index_2", "2", kChoose, kPref,
     "ShadowNeedleColor_Index", "2", kFollow},
    {"mnuSetColNeedleShadow", "mnuSetColNeedleShadow_Index_3", "3", kChoose, kPref,
     "ShadowNeedleColor_Index", "3", kFollow},
    {"mnuSetColNeedleShadow", "mnuSetColNeedleShadow_Index_4", "4", kChoose, kPref,
     "ShadowNeedleColor_Index", "4", kFollow},
    {"mnuSetColNeedleShadow", "mnuSetColNeedleShadow_Index_5", "Full", kChoose, kPref,
     "ShadowNeedleColor_Index", "5", kFollow},
    {"mnuSetColNeedle", "mnuSetColNeedleBm", "Freeze", kColour, kPref, "FreezeNeedle_Color"},
    {"mnuSetCol", "mnuSetColScale", "Scale", kColour, kPref, "Scale_Color"},
    {"mnuSetCol", "mnuSetColAlert", "Alert", kMenu, kPref},
    {"mnuSetColAlert", "mnuSetColAlertSet", "Needle SET", kColour, kPref, "LED_Set_Color"},
    {"mnuSetColAlert", "mnuSetColAlertBM", "Body Motion", kColour, kPref, "LED_BM_Color"},
    {"mnuSetColAlert", "mnuSetColAlertLag", "Needle Lag", kColour, kPref, "LED_Lag_Color"},
    {"mnuSetCol", "mnuSetColText", "Text", kColour, kPref, "Text_Color"},
    {"mnuSetCol", "mnuSetColorGraph", "Graph", kMenu, kPref},
    {"mnuSetColorGraph", "mnuSetColorGraphPen", "Pen", kColour, kPref, "GraphPen_Color"},
    {"mnuSetColorGraph", "mnuSetColorGraphSheet", "Sheet", kColour, kPref, "GraphSheet_Color"},
    {"mnuSetColorGraph", "mnuSetColorGraphGrid", "Grid", kColour, kPref, "GraphGrid_Color"},
    {"mnuSetCol", "mnuSetColBackground", "Background", kColour, kPref, "Background_Color"},
    {"mnuSetCol", "Dummy1", "-", Act::Separator, kPref},
    {"mnuSetCol", "mnuSettingsColorsDefault", "Set Defaults", Act::DefaultColours, kPref},
};

constexpr MenuRow kSettingRows[] = {
    {"mnuSettings", "mnuSetNeedleWidth", "Needle Width", kMenu, kPref},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_0", "off", kChoose, kPref, "Needle_Width", "0",
     kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_1", "1 Pixel", kChoose, kPref, "Needle_Width",
     "1", kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_2", "2 Pixels", kChoose, kPref, "Needle_Width",
     "2", kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_3", "3 Pixels", kChoose, kPref, "Needle_Width",
     "3", kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_4", "4 Pixels", kChoose, kPref, "Needle_Width",
     "4", kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_5", "5 Pixels", kChoose, kPref, "Needle_Width",
     "5", kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_6", "6 Pixels", kChoose, kPref, "Needle_Width",
     "6", kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_7", "7 Pixels", kChoose, kPref, "Needle_Width",
     "7", kFollow},
    {"mnuSetNeedleWidth", "mnuSettingsNeedleWidth_8", "8 Pixels", kChoose, kPref, "Needle_Width",
     "8", kFollow},
    {"mnuSettings", "mnuSettingsAlerts", "Alerts", kMenu, kPref},
    {"mnuSettingsAlerts", "mnuSettingsAlertsBmSens", "Body Motion Detector", kMenu, kPref},
    {"mnuSettingsAlertsBmSens", "mnuSettingsBodyMotionThreshold_0", "Fine", kChoose, kPref,
     "BM_Threshold_Index", "1", kFollow},
    {"mnuSettingsAlertsBmSens", "mnuSettingsBodyMotionThreshold_1", "Medium", kChoose, kPref,
     "BM_Threshold_Index", "2", kFollow},
    {"mnuSettingsAlertsBmSens", "mnuSettingsBodyMotionThreshold_2", "Coarse", kChoose, kPref,
     "BM_Threshold_Index", "3", kFollow},
    {"mnuSettingsAlerts", "mnuSettingsBmFreeze", "Body Motion Freeze", kMenu, Command::Freeze},
    {"mnuSettingsBmFreeze", "mnuSetBmFreezeOn", "On", kChoose, Command::Freeze, "FreezeEnable",
     "True", kFollow},
    {"mnuSettingsBmFreeze", "mnuSetBmFreezeOff", "Off", kChoose, Command::Freeze, "FreezeEnable",
     "False", kFollow},
    {"mnuSettingsAlerts", "mnuSettingsAlertsLag", "Needle Lag", kMenu, kPref},
    {"mnuSettingsAlertsLag", "mnuSettingsLagThreshold_0", "1/50 sec", kChoose, kPref,
     "DataLag_Index", "1", kFollow},
    {"mnuSettingsAlertsLag", "mnuSettingsLagThreshold_1", "2/50 sec", kChoose, kPref,
     "DataLag_Index", "2", kFollow},
    {"mnuSettingsAlertsLag", "mnuSettingsLagThreshold_2", "3/50 sec", kChoose, kPref,
     "DataLag_Index", "3", kFollow},
    {"mnuSettingsAlertsLag", "mnuSettingsLagThreshold_3", "4/50 sec", kChoose, kPref,
     "DataLag_Index", "4", kFollow},
    {"mnuSettingsAlertsLag", "mnuSettingsLagThreshold_4", "1/10 sec", kChoose, kPref,
     "DataLag_Index", "5", kFollow},
    {"mnuSettings", "mnuSettingsExtSw", "External Switch", kMenu, kPref},
    {"mnuSettingsExtSw", "mnuSettingsExtSwMode_0", "Needle SET", kChoose, kPref, "SwitchMode_Index",
     "1", kFollow},
    {"mnuSettingsExtSw", "mnuSettingsExtSwMode_1", "Tag", kChoose, kPref, "SwitchMode_Index", "2",
     kFollow},
    {"mnuSettings", "mnuSetNeedleBD", "Needle BD Counter", kMenu, Command::NeedleBdCounter},
    {"mnuSetNeedleBD", "mnuSetNeedleBDOn", "On", kChoose, Command::NeedleBdCounter,
     "NeedleBdEnable", "True", Mark::Keep},
    {"mnuSetNeedleBD", "mnuSetNeedleBDOff", "Off", kChoose, Command::NeedleBdCounter,
     "NeedleBdEnable", "False", Mark::Keep},
    {"mnuSettings", "mnuSettingsAutoSave", "Autosave Settings", kMenu, kPref},
    {"mnuSettingsAutoSave", "mnuSettingsAutoSaveOn", "On", kChoose, kPref, "AutoSaveMode", "1",
     kFollow},
    {"mnuSettingsAutoSave", "mnuSettingsAutoSavePrompt", "Prompt", kChoose, kPref, "AutoSaveMode",
     "2", kFollow},
    {"mnuSettingsAutoSave", "mnuSettingsAutoSaveOff", "Off", kChoose, kPref, "AutoSaveMode", "0",
     kFollow},
};

constexpr MenuRow kConnectionRows[] = {
    {"", "mnuConnection", "Connection", kMenu, kPref},
    {"mnuConnection", "mnuConnectionConnect", "Connect", Act::Connect, Command::Connect},
    {"mnuConnection", "mnuConnectionPort", "&Port", kMenu, Command::Connect},
    {"mnuConnectionPort", "mnuConnectionPortComm_0", "None", Act::Port, Command::Connect, "ComPort",
     "0", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_1", "Comm1:", Act::Port, Command::Connect,
     "ComPort", "1", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_2", "Comm2:", Act::Port, Command::Connect,
     "ComPort", "2", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_3", "Comm3:", Act::Port, Command::Connect,
     "ComPort", "3", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_4", "Comm4:", Act::Port, Command::Connect,
     "ComPort", "4", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_5", "Comm5:", Act::Port, Command::Connect,
     "ComPort", "5", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_6", "Comm6:", Act::Port, Command::Connect,
     "ComPort", "6", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_7", "Comm7:", Act::Port, Command::Connect,
     "ComPort", "7", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_8", "Comm8:", Act::Port, Command::Connect,
     "ComPort", "8", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_9", "Comm9:", Act::Port, Command::Connect,
     "ComPort", "9", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_10", "Comm10:", Act::Port, Command::Connect,
     "ComPort", "10", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_11", "Comm11:", Act::Port, Command::Connect,
     "ComPort", "11", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_12", "Comm12:", Act::Port, Command::Connect,
     "ComPort", "12", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_13", "Comm13:", Act::Port, Command::Connect,
     "ComPort", "13", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_14", "Comm14:", Act::Port, Command::Connect,
     "ComPort", "14", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_15", "Comm15:", Act::Port, Command::Connect,
     "ComPort", "15", Mark::Port},
    {"mnuConnectionPort", "mnuConnectionPortComm_16", "Comm16:", Act::Port, Command::Connect,
     "ComPort", "16", Mark::Port},
    {"mnuConnection", "mnuConnectSensor", "Sensor", kMenu, Command::Sensor},
    {"mnuConnectSensor",
     "mnuSensorLocal",
     "Local",
     Act::SensorLocal,
     Command::Sensor,
     {},
     {},
     Mark::Sensor},
    {"mnuConnectSensor",
     "mnuSensorRemote",
     "Remote",
     Act::SensorRemote,
     Command::Sensor,
     {},
     {},
     Mark::Sensor},
    {"mnuConnection", "mnuConnectNeedleTest", "Needle Test - Start", Act::NeedleTest,
     Command::NeedleTest},
    {"mnuConnection", "mnuConnectTest", "Test Mode", Act::Menu, kPref},
    {"mnuConnectTest", "mnuConnTestControl", "Run", Act::TestControl, Command::TestMode},
    {"mnuConnectTest", "mnuConnTestAudio", "Audio", Act::TestBeep, kPref, "", "", Mark::Test},
    {"mnuConnectTest", "mnuConnTestSlow", "Slow", Act::TestSpeed, kPref, "", "40", Mark::Test},
    {"mnuConnectTest", "mnuConnTestMid", "Mid", Act::TestSpeed, kPref, "", "20", Mark::Test},
    {"mnuConnectTest", "mnuConnTestFast", "Fast", Act::TestSpeed, kPref, "", "10", Mark::Test},
};

constexpr MenuRow kViewRows[] = {
    {"", "mnuView", "&View", kMenu, kPref},
    {"mnuView", "mnuViewRecording", "Recording", Act::ViewRecording, Command::ViewRecording,
     "RecordVisible", "True", kFollow},
    {"mnuView", "mnuViewGraph", "Graph", Act::Toggle, kPref, "GraphVisible", "True", kFollow},
    {"mnuView", "mnuViewMeter", "Meter Style", Act::MeterStyle, Command::MeterStyle},
    {"", "mnuGraph", "Graph", kMenu, kPref},
    {"mnuGraph", "mnuGraphGridX", "Grid X", Act::Toggle, kPref, "GridX", "True", kFollow},
    {"mnuGraph", "mnuGraphGridY", "Grid Y", Act::Toggle, kPref, "GridY", "True", kFollow},
    {"mnuGraph", "mnuGraphInvert", "Invert", Act::Toggle, kPref, "GraphInvert", "True", kFollow},
    {"mnuGraph", "mnuGraphHeight", "Height", kMenu, kPref},
    {"mnuGraphHeight", "mnuGraphHeightIndex_0", "", kChoose, kPref, "GraphHeight_Index", "0",
     kFollow},
    {"mnuGraphHeight", "mnuGraphHeightIndex_1", "1", kChoose, kPref, "GraphHeight_Index", "1",
     kFollow},
    {"mnuGraphHeight", "mnuGraphHeightIndex_2", "2", kChoose, kPref, "GraphHeight_Index", "2",
     kFollow},
    {"mnuGraphHeight", "mnuGraphHeightIndex_3", "3", kChoose, kPref, "GraphHeight_Index", "3",
     kFollow},
    {"mnuGraphHeight", "mnuGraphHeightIndex_4", "4", kChoose, kPref, "GraphHeight_Index", "4",
     kFollow},
    {"mnuGraphHeight", "mnuGraphHeightIndex_5", "5", kChoose, kPref, "GraphHeight_Index", "5",
     kFollow},
    {"mnuGraph", "mnuGraphPenWidth", "Pen Width", kMenu, kPref},
    {"mnuGraphPenWidth", "mnuGraphPenWidthIndex_0", "", kChoose, kPref, "GraphPenWidth_Index", "0",
     kFollow},
    {"mnuGraphPenWidth", "mnuGraphPenWidthIndex_1", "1", kChoose, kPref, "GraphPenWidth_Index", "1",
     kFollow},
    {"mnuGraphPenWidth", "mnuGraphPenWidthIndex_2", "2", kChoose, kPref, "GraphPenWidth_Index", "2",
     kFollow},
    {"mnuGraphPenWidth", "mnuGraphPenWidthIndex_3", "3", kChoose, kPref, "GraphPenWidth_Index", "3",
     kFollow},
    {"mnuGraph", "mnuGraphTimescale", "Timescale", kMenu, kPref},
    {"mnuGraphTimescale", "mnuGraphTimescaleSecs_0", "", kChoose, kPref, "GraphTimescale", "0",
     kFollow},
    {"mnuGraphTimescale", "mnuGraphTimescaleSecs_1", "8", kChoose, kPref, "GraphTimescale", "8",
     kFollow},
    {"mnuGraphTimescale", "mnuGraphTimescaleSecs_2", "16", kChoose, kPref, "GraphTimescale", "16",
     kFollow},
    {"mnuGraphTimescale", "mnuGraphTimescaleSecs_3", "24", kChoose, kPref, "GraphTimescale", "24",
     kFollow},
    {"mnuGraphTimescale", "mnuGraphTimescaleSecs_4", "32", kChoose, kPref, "GraphTimescale", "32",
     kFollow},
    {"", "mnuRecording", "Recording", kMenu, kPref},
    {"mnuRecording", "mnuRecSettings", "Settings", Act::RecordingSetup, Command::RecordingSetup},
    {"mnuRecording", "mnuRecAudioMode", "Audio", kMenu, Command::RecordingSetup},
    {"mnuRecAudioMode", "mnuRecAudioOn", "On", Act::Audio, Command::RecordingSetup, "AudioEnable",
     "True", kFollow},
    {"mnuRecAudioMode", "mnuRecAudioOff", "Off", Act::Audio, Command::RecordingSetup, "AudioEnable",
     "False", kFollow},
    {"", "mnuhelp", "&Help", kMenu, kPref},
    {"mnuhelp", "mnuhelpAbout", "&About", Act::About, kPref},
    {"mnuhelp", "mnuHelpHelp", "Help", Act::Help, kPref},
};

template <std::size_t... Sizes>
constexpr auto joined(const MenuRow (&... tables)[Sizes]) {
  std::array<MenuRow, (Sizes + ...)> all{};
  auto end = all.begin();
  ((end = std::copy(std::begin(tables), std::end(tables), end)), ...);
  return all;
}

constexpr auto kMenuRows = joined(kFileRows, kColourRows, kSettingRows, kConnectionRows, kViewRows);

constexpr KeyRow kKeyRows[] = {
    {Qt::Key_Space, false, Key::Space},   {Qt::Key_Insert, false, Key::Insert},
    {Qt::Key_Up, false, Key::Up},         {Qt::Key_Down, false, Key::Down},
    {Qt::Key_C, false, Key::C},           {Qt::Key_Z, false, Key::Z},
    {Qt::Key_F, false, Key::F},           {Qt::Key_B, false, Key::B},
    {Qt::Key_T, false, Key::T},           {Qt::Key_R, false, Key::R},
    {Qt::Key_S, false, Key::S},           {Qt::Key_P, false, Key::P},
    {Qt::Key_O, false, Key::O},           {Qt::Key_L, false, Key::L},
    {Qt::Key_Comma, true, Key::Less},     {Qt::Key_Less, false, Key::Less},
    {Qt::Key_Period, true, Key::Greater}, {Qt::Key_Greater, false, Key::Greater},
    {Qt::Key_Shift, false, Key::Shift},
};

}  // namespace

std::span<const MenuRow> menuRows() {
  return kMenuRows;
}

const MenuRow* findMenuRow(std::string_view name) {
  const auto row = std::find_if(kMenuRows.begin(), kMenuRows.end(),
                                [&](const MenuRow& candidate) { return candidate.name == name; });
  return row == kMenuRows.end() ? nullptr : &*row;
}

std::span<const KeyRow> keyRows() {
  return kKeyRows;
}

Key keyFor(int code, bool shift) {
  for (const KeyRow& row : kKeyRows) {
    if (row.code == code && (shift || !row.shift)) return row.key;
  }
  return Key::Other;
}

}  // namespace qv3
