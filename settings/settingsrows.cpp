#include "settings/settingsrows.h"

#include <algorithm>
#include <array>

#include "settings/conversions.h"

namespace qv3 {

namespace {

using P = ProgramSettings;

constexpr std::string_view kFormat = "Format";
constexpr std::string_view kSettings = "Settings";
constexpr std::string_view kGraph = "Graph";
constexpr std::string_view kSession = "";

constexpr Effect kNeedleColour = Effect::RecomputeNeedleTints | Effect::RedrawPanel;
constexpr Effect kPanelColour = Effect::RecomputePanelTint | Effect::RedrawPanel;

// Numbers among the Boolean defaults are meant: a missing key and a written one differ in spelling.
constexpr SettingRow kRows[] = {
    {kColorsSection, "Dial_Color", &P::Dial_Color, "16777215", kNeedleColour},
    {kColorsSection, "LED_Set_Color", &P::LED_Set_Color, "65280", Effect::None},
    {kColorsSection, "LED_BM_Color", &P::LED_BM_Color, "16711680", Effect::None},
    {kColorsSection, "LED_Lag_Color", &P::LED_Lag_Color, "255", Effect::None},
    {kColorsSection, "Panel_Color", &P::Panel_Color, "10070316", kPanelColour},
    {kColorsSection, "Background_Color", &P::Background_Color, "0",
     Effect::WindowBack | Effect::Layout},
    {kColorsSection, "GraphSheet_Color", &P::GraphSheet_Color, "11924207", Effect::GraphBack},
    {kColorsSection, "GraphPen_Color", &P::GraphPen_Color, "0", Effect::None},
    {kColorsSection, "GraphGrid_Color", &P::GraphGrid_Color, "12632256", Effect::None},
    {kColorsSection, "MainNeedle_Color", &P::MainNeedle_Color, "255", kNeedleColour},
    {kColorsSection, "ShadowNeedleColor_Index", &P::ShadowNeedleColor_Index, "1",
     Effect::RecomputeNeedleTints},
    {kColorsSection, "Scale_Color", &P::Scale_Color, "12615680", Effect::RedrawPanel},
    {kColorsSection, "FreezeNeedle_Color", &P::FreezeNeedle_Color, "0", Effect::RedrawPanel},
    {kColorsSection, "Text_Color", &P::Text_Color, "0", kPanelColour | Effect::RepaintKnob},

    {kFormat, "Needle_Width", &P::Needle_Width, "4", Effect::WipeNeedle},
    {kFormat, "DialType", &P::DialType, "1", Effect::Layout},
    {kFormat, "ScaleType", &P::ScaleType, "0", Effect::Layout},
    {kFormat, "RecordVisible", &P::RecordVisible, "1", Effect::RecordPanel | Effect::Layout},
    {kFormat, "GraphVisible", &P::GraphVisible, "0", Effect::Layout},
    {kFormat, "GraphHeight_Index", &P::GraphHeight_Index, "3", Effect::Layout},
    {kFormat, "ClockType", &P::ClockType, "1", Effect::Layout},
    {kFormat, "ClockLeft", &P::ClockLeft, "False", Effect::Layout},
    {kFormat, "DateType", &P::DateType, "1", Effect::Layout},

    {kSettings, "SwitchMode_Index", &P::SwitchMode_Index, "1", Effect::None},
    {kSettings, "DataLag_Index", &P::DataLag_Index, "2", Effect::LagLimit},
    {kSettings, "BM_Threshold_Index", &P::BM_Threshold_Index, "2", Effect::BodyMotionThreshold},
    {kSettings, "Freeze_Threshold_Index", &P::Freeze_Threshold_Index, "2", Effect::None},
    {kSettings, "FreezeEnable", &P::FreezeEnable, "False", Effect::None},
    {kSettings, "NeedleBdEnable", &P::NeedleBdEnable, "False", Effect::None},
    {kSettings, "qv3SensorMode", &P::qv3SensorMode, "False", Effect::None},

    {kGraph, "GraphInvert", &P::GraphInvert, "0", Effect::None},
    {kGraph, "GraphPenWidth_Index", &P::GraphPenWidth_Index, "2", Effect::GraphPen},
    {kGraph, "GridX", &P::GridX, "False", Effect::None},
    {kGraph, "GridY", &P::GridY, "False", Effect::None},
    {kGraph, "GraphTimescale", &P::GraphTimescale, "8", Effect::GraphRebuild},
    {kGraph, "GraphGain", &P::GraphGain, "0", Effect::None},

    {kRecordingSection, "SavePath", &P::SavePath, "", Effect::Transport},
    {kRecordingSection, "SavePrefix", &P::SavePrefix, "Prefix_", Effect::Transport},
    {kRecordingSection, "LoadPath", &P::LoadPath, "C:\\Program Files\\quorvantel\\samples\\",
     Effect::None},
    {kRecordingSection, "RecordingMode", &P::RecordingMode, "2", Effect::Transport},
    {kRecordingSection, "SuffixType", &P::SuffixType, "1", Effect::Transport},
    {kRecordingSection, "SuffixNum", &P::SuffixNum, "1", Effect::Transport},
    {kRecordingSection, "AudioEnable", &P::AudioEnable, "True", Effect::AudioMode},
    {kRecordingSection, "RecPromptEnable", &P::RecPromptEnable, "True", Effect::None},
    {kRecordingSection, "TimeDateEnable", &P::TimeDateEnable, "True", Effect::None},
    {kRecordingSection, "PlayLoopEnable", &P::PlayLoopEnable, "False", Effect::Transport},
};

constexpr SettingRow kSessionRows[] = {
    {kSession, "AutoSaveMode", &P::AutoSaveMode, "0", Effect::None},
    {kSession, "ComPort", &P::ComPort, "0", Effect::None},
    {kSession, "KnobPosition", &P::KnobPosition, "0", Effect::KnobMoved},
};

// One pair of functions a type of field; everything else in the folder goes through them.

std::optional<std::int32_t> parse(std::string_view text, std::int32_t) {
  return toLong(text);
}
std::optional<std::int16_t> parse(std::string_view text, std::int16_t) {
  return toInteger(text);
}
std::optional<bool> parse(std::string_view text, bool) {
  return toBoolean(text);
}
std::optional<std::string> parse(std::string_view text, const std::string&) {
  return std::string(text);
}

SettingValue valueOf(bool value) {
  return value;
}
SettingValue valueOf(std::int32_t value) {
  return value;
}
SettingValue valueOf(const std::string& value) {
  return value;
}

std::string toText(const SettingValue& value) {
  if (const auto* flag = std::get_if<bool>(&value)) return fromBoolean(*flag);
  if (const auto* number = std::get_if<std::int32_t>(&value)) return fromLong(*number);
  return std::get<std::string>(value);
}

SettingValue valueOf(const ProgramSettings& settings, const SettingRow& row) {
  return std::visit([&](auto field) { return valueOf(settings.*field); }, row.field);
}

}  // namespace

std::span<const SettingRow> settingsRows() {
  return kRows;
}

const SettingRow* findSetting(std::string_view key) {
  using Rows = std::span<const SettingRow>;
  for (const Rows rows : {Rows(kRows), Rows(kSessionRows)}) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const SettingRow& candidate) {
      return candidate.key == key;
    });
    if (row != rows.end()) return &*row;
  }
  return nullptr;
}

std::string textOf(const ProgramSettings& settings, const SettingRow& row) {
  return toText(valueOf(settings, row));
}

bool setFromText(ProgramSettings& settings, const SettingRow& row, std::string_view text) {
  return std::visit(
      [&](auto field) {
        auto value = parse(text, settings.*field);
        if (value) settings.*field = *value;
        return value.has_value();
      },
      row.field);
}

std::optional<SettingValue> getSetting(const ProgramSettings& settings, std::string_view key) {
  const SettingRow* row = findSetting(key);
  if (row == nullptr) return std::nullopt;
  return valueOf(settings, *row);
}

bool setFromText(ProgramSettings& settings, std::string_view key, std::string_view text) {
  const SettingRow* row = findSetting(key);
  return row != nullptr && setFromText(settings, *row, text);
}

bool setSetting(ProgramSettings& settings, std::string_view key, const SettingValue& value) {
  return setFromText(settings, key, toText(value));
}

}  // namespace qv3
