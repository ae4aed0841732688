#pragma once

#include <functional>

#include "app/heartbeat.h"
#include "app/waits.h"
#include "app/window/dialogs.h"
#include "app/window/mainwindow.h"
#include "settings/sessionconfig.h"
#include "settings/settingsfile.h"

namespace qv3 {

/// What the user is told when the session config cannot be written.
Notice configNotSaved();

/// Ends the program: gives up what is under way, asks what has to be asked, writes what a run
/// leaves behind, and quits. Once begun, everything else is refused and a second request is
/// ignored.
class ExitSequence {
 public:
  /// Ends recording, playback, loading and saving; asks where something is at stake. `go` hears
  /// whether the exit goes on.
  struct UnderWay {
    std::function<void(std::function<void(bool go)>)> end;
    std::function<void(std::function<void()>)> endSilently;
  };

  struct Parts {
    Heartbeat& heartbeat;
    MainWindow& window;
    Dialogs& dialogs;
    Waits& waits;
    SettingsFile& settingsFile;
    SessionConfigFile& configFile;
    UnderWay underWay;
    std::function<void()> closeSound;  ///< the last thing that is done
    std::function<void()> quit;
  };

  /// All references must outlive this.
  explicit ExitSequence(Parts parts);

  /// By the user. A dialog that is open has to be answered first.
  void request();

  /// By a signal or a log-out: nothing is asked, and what is open is answered as Cancel. Settings
  /// are left alone where a question would have decided.
  void requestSilently();

  /// Whoever is told that a wait was given up unwinds and calls this last.
  void waitGivenUp();

  bool requested() const { return m_stage != Stage::Idle; }

 private:
  enum class Stage { Idle, Requested, Ending, Closing };

  void begin();
  void endUnderWay();
  void endSilently();
  void stay();
  void close();
  void writeSettings();
  void askAboutSettings();
  void finish();
  void saveDisplaySettings();

  Parts m_parts;
  Stage m_stage = Stage::Idle;
  bool m_silent = false;
};

}  // namespace qv3
