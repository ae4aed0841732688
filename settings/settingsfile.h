#pragma once

#include <string>

#include "settings/programsettings.h"
#include "settings/settingsrows.h"
#include "settings/textstore.h"

namespace qv3 {

/// Loads, saves and compares the settings file at ProgramSettings::IniPath. Each save replaces the
/// file once; comments, unknown keys, their order and line ends stay. A save that fails says so in
/// its result and leaves the file as it was.
class SettingsFile {
 public:
  /// `stateFolder` is where the file is looked for that IniPath does not name.
  SettingsFile(TextStore& store, std::string stateFolder);

  /// Reads all keys. If nothing stands at IniPath it becomes "qv3_Varnel.ini" in the state folder;
  /// no file is made. A missing key or file gives the defaults, a value that cannot be read leaves
  /// its field alone.
  void LoadAllSettings(ProgramSettings& settings) const;

  /// Writes the 36 keys of "Colors", "Format", "Settings" and "Graph".
  StoreResult SaveDisplaySettings(const ProgramSettings& settings);

  /// IniPath becomes `path`, and the file there holds nothing but the 36 keys, whatever it held.
  StoreResult SaveDisplaySettingsAs(ProgramSettings& settings, const std::string& path);

  /// Writes the 10 keys of "Recording".
  StoreResult SaveRecordingSettings(const ProgramSettings& settings);

  /// Whether the 36 display keys in the file, with its defaults, are those in memory. Numbers are
  /// compared as numbers; one that cannot be read differs.
  bool SettingsUnchanged(const ProgramSettings& settings) const;

 private:
  TextStore& m_store;
  std::string m_stateFolder;
};

/// Puts the defaults of all 14 colour keys into memory; returns the effects of them all.
Effect SetDefaultColours(ProgramSettings& settings);

}  // namespace qv3
