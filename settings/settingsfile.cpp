#include "settings/settingsfile.h"

#include <filesystem>
#include <utility>

#include "settings/conversions.h"
#include "settings/inifile.h"

namespace qv3 {

namespace {

constexpr const char* kIniName = "qv3_Varnel.ini";

bool isDisplay(const SettingRow& row) {
  return row.section != kRecordingSection;
}

bool isRecording(const SettingRow& row) {
  return !isDisplay(row);
}

std::string storedText(const std::optional<std::string>& file, const SettingRow& row) {
  return ReadIniString(file, row.section, row.key, row.defaultText);
}

std::string pathIn(const std::string& folder) {
  const std::filesystem::path parent(std::u8string(folder.begin(), folder.end()));
  const std::u8string path = (parent / kIniName).u8string();
  return {path.begin(), path.end()};
}

using RowFilter = bool (*)(const SettingRow&);

void writeRows(std::optional<std::string>& file, const ProgramSettings& settings,
               RowFilter wanted) {
  for (const SettingRow& row : settingsRows()) {
    if (wanted(row)) WriteIniString(file, row.section, row.key, textOf(settings, row));
  }
}

StoreResult save(TextStore& store, const ProgramSettings& settings, RowFilter wanted) {
  return editIniFile(store, settings.IniPath,
                     [&](std::optional<std::string>& file) { writeRows(file, settings, wanted); });
}

// How a text in the file compares with the field, by the field's type.
bool sameValue(std::string_view text, std::int32_t value) {
  const std::optional<double> number = toDouble(text);
  return number && *number == value;
}
bool sameValue(std::string_view text, bool value) {
  return toBoolean(text) == value;
}
bool sameValue(std::string_view text, const std::string& value) {
  return text == value;
}

}  // namespace

SettingsFile::SettingsFile(TextStore& store, std::string stateFolder)
    : m_store(store), m_stateFolder(std::move(stateFolder)) {}

void SettingsFile::LoadAllSettings(ProgramSettings& settings) const {
  if (!m_store.exists(settings.IniPath)) settings.IniPath = pathIn(m_stateFolder);
  const std::optional<std::string> file = m_store.read(settings.IniPath);
  for (const SettingRow& row : settingsRows()) setFromText(settings, row, storedText(file, row));
}

StoreResult SettingsFile::SaveDisplaySettings(const ProgramSettings& settings) {
  return save(m_store, settings, isDisplay);
}

StoreResult SettingsFile::SaveDisplaySettingsAs(ProgramSettings& settings,
                                                const std::string& path) {
  settings.IniPath = path;
  std::optional<std::string> file;
  writeRows(file, settings, isDisplay);
  return m_store.replace(path, *file);
}

StoreResult SettingsFile::SaveRecordingSettings(const ProgramSettings& settings) {
  return save(m_store, settings, isRecording);
}

bool SettingsFile::SettingsUnchanged(const ProgramSettings& settings) const {
  const std::optional<std::string> file = m_store.read(settings.IniPath);
  bool unchanged = true;
  for (const SettingRow& row : settingsRows()) {
    if (!isDisplay(row)) continue;
    const std::string text = storedText(file, row);
    unchanged = unchanged &&
                std::visit([&](auto field) { return sameValue(text, settings.*field); }, row.field);
  }
  return unchanged;
}

Effect SetDefaultColours(ProgramSettings& settings) {
  Effect effects = Effect::None;
  for (const SettingRow& row : settingsRows()) {
    if (row.section != kColorsSection) continue;
    setFromText(settings, row, row.defaultText);
    effects = effects | row.effects;
  }
  return effects;
}

}  // namespace qv3
