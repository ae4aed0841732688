#include "app/settingscommands.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <memory>
#include <set>
#include <utility>

#include "settings/dialog/meterdialog.h"
#include "settings/settingsrows.h"

namespace qv3 {
namespace {

QString iniFilter() {
  return QStringLiteral("ini file (*.ini)");
}

/// A file dialog with `path` preset.
std::unique_ptr<QFileDialog> fileDialog(const QString& name, const QString& title,
                                        const QString& path, QWidget& window) {
  const QFileInfo preset(path);
  auto dialog = std::make_unique<QFileDialog>(&window, title, preset.absolutePath(), iniFilter());
  dialog->setObjectName(name);
  dialog->selectFile(preset.fileName());
  return dialog;
}

QString chosenFile(const QFileDialog& dialog) {
  const QStringList files = dialog.selectedFiles();
  return files.isEmpty() ? QString() : QDir::toNativeSeparators(files.first());
}

std::string textOfBoolean(bool value) {
  return value ? "True" : "False";
}

}  // namespace

SettingsCommands::SettingsCommands(ProgramSettings& settings, SettingsFile& file,
                                   Heartbeat& heartbeat, Dialogs& dialogs,
                                   std::function<void()> refreshMenus,
                                   std::function<void()> applied)
    : m_settings(settings),
      m_file(file),
      m_heartbeat(heartbeat),
      m_dialogs(dialogs),
      m_refreshMenus(std::move(refreshMenus)),
      m_applied(std::move(applied)) {}

void SettingsCommands::choose(const MenuRow& row) {
  set(row.key, row.value);
}

void SettingsCommands::toggle(const MenuRow& row) {
  const auto present = getSetting(m_settings, row.key);
  const bool* on = present ? std::get_if<bool>(&*present) : nullptr;
  if (on != nullptr) set(row.key, textOfBoolean(!*on));
}

void SettingsCommands::set(std::string_view key, std::string_view text) {
  setFromText(m_settings, key, text);
  changed(key);
}

void SettingsCommands::changed(std::string_view key) {
  m_heartbeat.tell([&](Instrument& meter, const Now& now) { meter.settingChanged(key, now); });
}

void SettingsCommands::pickColour(const MenuRow& row) {
  auto dialog = std::make_unique<QColorDialog>(m_lastColour, &m_dialogs.window());
  dialog->setObjectName(QStringLiteral("dlgColour"));
  const QColorDialog* chooser = dialog.get();
  m_dialogs.open(std::move(dialog), [this, &row, chooser](bool accepted) {
    if (!accepted || !m_heartbeat.instrument().allowed(row.command)) return;
    m_lastColour = chooser->selectedColor();
    const Colour colour = pack({m_lastColour.red(), m_lastColour.green(), m_lastColour.blue()});
    set(row.key, std::to_string(colour));
  });
}

void SettingsCommands::defaultColours() {
  SetDefaultColours(m_settings);
  for (const SettingRow& row : settingsRows()) {
    if (row.section == kColorsSection) changed(row.key);
  }
}

void SettingsCommands::meterStyle() {
  // A set, since a dial may be clicked many times before the window follows.
  auto clicked = std::make_shared<std::set<std::string>>();
  auto dialog = std::make_unique<MeterDialog>(
      m_settings,
      [this, clicked](std::string_view key) {
        clicked->emplace(key);
        m_refreshMenus();
      },
      &m_dialogs.window());
  m_dialogs.open(std::move(dialog), [this, clicked](bool) {
    for (const std::string& key : *clicked) changed(key);
    if (clicked->empty()) changed("DialType");
  });
}

void SettingsCommands::loadSettings() {
  auto dialog = fileDialog(QStringLiteral("dlgLoadSettings"), QStringLiteral("Load Settings File"),
                           QString::fromStdString(m_settings.IniPath), m_dialogs.window());
  dialog->setFileMode(QFileDialog::ExistingFile);
  const QFileDialog* chooser = dialog.get();
  m_dialogs.open(std::move(dialog), [this, chooser](bool accepted) {
    if (!m_heartbeat.instrument().allowed(Command::LoadSettings)) return;
    // Not by the user: what the program changed since the file was written is still to be written.
    if (m_dialogs.silenced()) return;
    // A cancelled dialog has the file that was preset: it is read again.
    loadFrom(accepted ? chosenFile(*chooser) : QString::fromStdString(m_settings.IniPath));
  });
}

void SettingsCommands::loadFrom(const QString& path) {
  const ProgramSettings before = m_settings;
  m_settings.IniPath = path.toStdString();
  m_file.LoadAllSettings(m_settings);
  for (const SettingRow& row : settingsRows()) {
    if (textOf(m_settings, row) != textOf(before, row)) changed(row.key);
  }
  applyAll();
}

void SettingsCommands::applyAll() {
  for (const std::string_view key : {"BM_Threshold_Index", "DataLag_Index", "Background_Color",
                                     "GraphSheet_Color", "GraphVisible"}) {
    changed(key);
  }
  m_applied();
}

void SettingsCommands::saveSettings() {
  // Whether it worked is not looked at; at exit the settings count as changed all the same.
  (void)m_file.SaveDisplaySettings(m_heartbeat.instrument().liveSettings());
}

void SettingsCommands::saveSettingsAs() {
  askWhereToSave(QString::fromStdString(m_settings.IniPath));
}

void SettingsCommands::askWhereToSave(const QString& proposed) {
  auto dialog = fileDialog(QStringLiteral("dlgSaveSettingsAs"), QStringLiteral("Save Settings As"),
                           proposed, m_dialogs.window());
  dialog->setAcceptMode(QFileDialog::AcceptSave);
  dialog->setDefaultSuffix(QStringLiteral("ini"));
  // The toolkit's own question is a loop of its own; ours is not.
  dialog->setOption(QFileDialog::DontConfirmOverwrite);
  const QFileDialog* chooser = dialog.get();
  m_dialogs.open(std::move(dialog), [this, chooser](bool accepted) {
    const QString path = accepted ? chosenFile(*chooser) : QString();
    if (path.isEmpty()) return;
    if (!QFileInfo::exists(path)) {
      saveTo(path);
      return;
    }
    m_dialogs.question({QStringLiteral("msgReplaceSettings"), QStringLiteral("Save Settings As"),
                        path + QStringLiteral(" already exists.\n\nReplace it?")},
                       [this, path](bool replace) {
                         if (replace) {
                           saveTo(path);
                         } else {
                           askWhereToSave(path);
                         }
                       });
  });
}

void SettingsCommands::saveTo(const QString& path) {
  if (!m_heartbeat.instrument().allowed(Command::SaveSettings)) return;
  ProgramSettings live = m_heartbeat.instrument().liveSettings();
  (void)m_file.SaveDisplaySettingsAs(live, path.toStdString());
  m_settings.IniPath = live.IniPath;
}

}  // namespace qv3
