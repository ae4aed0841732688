#pragma once

#include <functional>
#include <memory>

#include "app/connectioncommands.h"
#include "app/exitsequence.h"
#include "app/settingscommands.h"
#include "app/window/splash.h"
#include "app/window/windowdisplay.h"

namespace qv3 {

/// Brings the program up, in an order that is part of what the user sees: splash, session config,
/// settings, window, ports, meter. Runs from the event loop; while it waits for the meter or for an
/// answer the instrument is in `Operation::Starting` or `Probing` and refuses everything but Exit.
class StartUp {
 public:
  struct Parts {
    ProgramSettings& settings;
    SettingsFile& settingsFile;
    SessionConfigFile& configFile;
    MainWindow& window;
    WindowDisplay& display;
    Dialogs& dialogs;
    Waits& waits;
    Heartbeat& heartbeat;
    MeterSearch& search;
    const PortTable& ports;
    SettingsCommands& settingsCommands;
    ConnectionCommands& connection;
    ExitSequence& exit;
    std::function<void()> ready;  ///< it is up
  };

  /// All references must outlive this.
  explicit StartUp(Parts parts) : m_parts(parts) {}

  void run();

  /// Shown on the splash window too, while there is one.
  void showStatus(const QString& text);

 private:
  void loadSettings();
  void openWindow();
  void lookForMeter();
  void comeUp(bool found);
  /// False if the program is closing.
  bool letEventsGoOn(int ticks);

  Parts m_parts;
  std::unique_ptr<Splash> m_splash;
};

}  // namespace qv3
