#pragma once

#include <QColor>
#include <QString>
#include <functional>
#include <string_view>

#include "app/commandtable.h"
#include "app/heartbeat.h"
#include "app/window/dialogs.h"
#include "settings/settingsfile.h"

namespace qv3 {

/// The menu items that change settings, and those that load and save the settings file.
class SettingsCommands {
 public:
  /// All references must outlive this. `refreshMenus` shows what a dialog changed while it is open;
  /// `applied` hears that all settings were, which the recording panel follows.
  SettingsCommands(ProgramSettings& settings, SettingsFile& file, Heartbeat& heartbeat,
                   Dialogs& dialogs, std::function<void()> refreshMenus,
                   std::function<void()> applied);

  void choose(const MenuRow& row);
  void toggle(const MenuRow& row);
  void pickColour(const MenuRow& row);
  void defaultColours();
  void meterStyle();

  void loadSettings();
  void saveSettings();
  void saveSettingsAs();

  /// Brings about everything that the settings say, as after a start or a load.
  void applyAll();

 private:
  void set(std::string_view key, std::string_view text);
  void changed(std::string_view key);
  void loadFrom(const QString& path);
  void askWhereToSave(const QString& proposed);
  void saveTo(const QString& path);

  ProgramSettings& m_settings;
  SettingsFile& m_file;
  Heartbeat& m_heartbeat;
  Dialogs& m_dialogs;
  std::function<void()> m_refreshMenus;
  std::function<void()> m_applied;
  QColor m_lastColour = Qt::black;  ///< what the chooser returned last in this run
};

}  // namespace qv3
