#pragma once

#include <QDateTime>
#include <functional>
#include <map>
#include <optional>
#include <string>

#include "app/connectioncommands.h"
#include "app/exitsequence.h"
#include "app/helpcommands.h"
#include "app/session/sessioncommands.h"
#include "app/session/sessionwindow.h"
#include "app/settingscommands.h"
#include "app/startup.h"
#include "app/window/keyfilter.h"
#include "app/window/menus.h"
#include "app/window/windowdisplay.h"
#include "instrument/capture.h"

namespace qv3 {

/// The world that the program runs in.
struct Surroundings {
  BytePort& port;
  PortTable ports;
  Waiter& waiter;
  std::function<void()> giveUpWaits;
  TextStore& store;
  std::string stateFolder;
  std::function<StoreResult()> enterStateFolder;  ///< makes it the current directory
  std::function<Now()> now;
  std::function<QDateTime()> localTime;
  std::function<void()> quit;
  SessionSurroundings session;
  Desktop desktop;
  std::string captureFile;    ///< empty: nothing is captured
  std::string sessionFile;    ///< full path of one to open once the program is up, or empty
  std::string samplesFolder;  ///< of sessions that came with the program, if it is there
};

/// The whole program: makes the parts and joins them. What they do is theirs.
class Program {
 public:
  /// The references in `surroundings` must outlive the program.
  explicit Program(Surroundings surroundings);

  /// Brings it up; to be called from the event loop. Nothing if it has ended before.
  void start();

  /// Ends it without a question.
  void endSilently();

  /// The journal of the running recording cannot be written: said, and the recording goes on.
  void tellJournalFailure(const std::string& reason);

  MainWindow& window() { return m_window; }
  const ProgramSettings& settings() const { return m_settings; }
  const Instrument& instrument() const { return m_instrument; }

  /// Does what a menu item does, if it is enabled.
  void choose(const MenuRow& row);
  bool handles(Act act) const { return m_handlers.count(act) != 0; }

 private:
  using Handler = std::function<void(const MenuRow&)>;

  std::map<Act, Handler> makeHandlers();
  ConnectionCommands::Events connectionEvents();
  ExitSequence::UnderWay underWay();
  void closeSound();
  void viewRecording();
  void settingsApplied();
  QString usableFolder(const QString& wanted, bool toLoad) const;
  void joinMouse();
  KeyFilter::Keys keys();
  void beginCapture();
  void checkCapture();
  void showSearchStatus(const std::string& text);
  MenuState menuState();
  void refreshMenusSoon();
  void refreshMenus();

  Surroundings m_around;
  ProgramSettings m_settings;
  CommPort m_port;
  MediaSoundClock m_sound;
  MainWindow m_window;
  WindowDisplay m_display;
  Instrument m_instrument;
  Heartbeat m_heartbeat;
  std::optional<Capture> m_capture;
  Dialogs m_dialogs;
  Waits m_waits;
  SettingsFile m_settingsFile;
  SessionConfigFile m_configFile;
  MeterSearch m_search;
  SettingsCommands m_settingsCommands;
  ConnectionCommands m_connection;
  SessionWindow m_sessionWindow;
  SessionCommands m_session;
  HelpCommands m_help;
  ExitSequence m_exit;
  StartUp m_startUp;
  std::map<Act, Handler> m_handlers;
  Menus m_menus;
  bool m_begun = false;  ///< started, or ended before that
  bool m_menusBehind = false;
  KeyFilter m_keyFilter;
};

}  // namespace qv3
