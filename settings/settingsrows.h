#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "settings/programsettings.h"

namespace qv3 {

/// What has to happen after a setting took a value, also the one that it had. Flags; a value that
/// is only looked at when it is used has None. Layout includes RedrawPanel, and that RepaintKnob.
enum class Effect : std::uint32_t {
  None = 0,
  RecomputeNeedleTints = 1u << 0,  ///< DialNeedleTint and ShadowNeedleColor.
  RecomputePanelTint = 1u << 1,    ///< PanelTextTint.
  RepaintKnob = 1u << 2,
  RedrawPanel = 1u << 3,          ///< Draw_Panel, which re-centres the needle.
  Layout = 1u << 4,               ///< The window is laid out anew.
  WipeNeedle = 1u << 5,           ///< Remove_Needle; the needle is not re-centred.
  BodyMotionThreshold = 1u << 6,  ///< BmThreshold from BM_Threshold_Index.
  LagLimit = 1u << 7,             ///< LagLimit from DataLag_Index.
  GraphBack = 1u << 8,            ///< The graph surface's back colour.
  GraphPen = 1u << 9,             ///< The graph surface's pen width.
  GraphRebuild = 1u << 10,        ///< The graph starts with empty columns.
  WindowBack = 1u << 11,          ///< The window's back colour.
  RecordPanel = 1u << 12,         ///< The recording panel is shown or hidden.
  Transport = 1u << 13,           ///< Buttons and record-mode label are refreshed.
  AudioMode = 1u << 14,           ///< Sound is switched on or off; the menu item asks first.
  KnobMoved = 1u << 15,           ///< The sensitivity is another.
};

constexpr Effect operator|(Effect a, Effect b) {
  return static_cast<Effect>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}

/// Whether `effects` holds every flag of `wanted`.
constexpr bool has(Effect effects, Effect wanted) {
  return (effects | wanted) == effects;
}

/// A value on its way in or out of a field whose type the caller does not know.
using SettingValue = std::variant<bool, std::int32_t, std::string>;

/// The field of a row: Long, Integer, Boolean or text.
using SettingField = std::variant<std::int32_t ProgramSettings::*, std::int16_t ProgramSettings::*,
                                  bool ProgramSettings::*, std::string ProgramSettings::*>;

struct SettingRow {
  /// Empty: kept in the session config, not in the settings file.
  std::string_view section;
  std::string_view key;
  SettingField field;
  std::string_view defaultText;
  Effect effects;
};

inline constexpr std::string_view kColorsSection = "Colors";
inline constexpr std::string_view kRecordingSection = "Recording";

/// The settings file's 46 rows in the order in which they are written.
std::span<const SettingRow> settingsRows();

/// The row of a key, spelled exactly; also AutoSaveMode, ComPort and KnobPosition.
const SettingRow* findSetting(std::string_view key);

/// The field as the file spells it.
std::string textOf(const ProgramSettings& settings, const SettingRow& row);

/// False, and the field keeps its value, if the text is none of the field's type or out of range.
bool setFromText(ProgramSettings& settings, const SettingRow& row, std::string_view text);

// The same by name. An unknown key has no value and takes none. A value of another type counts as
// its text: 1 sets a Boolean, True sets no number.

std::optional<SettingValue> getSetting(const ProgramSettings& settings, std::string_view key);
bool setFromText(ProgramSettings& settings, std::string_view key, std::string_view text);
bool setSetting(ProgramSettings& settings, std::string_view key, const SettingValue& value);

}  // namespace qv3
