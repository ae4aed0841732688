#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

#include "app/heartbeat.h"
#include "app/session/foundtakes.h"
#include "app/session/sessionwindow.h"
#include "instrument/session/session.h"

namespace qv3 {

/// What the session needs of the machine.
struct SessionSurroundings {
  MediaPort& media;
  SoundSpool& spool;
  FileTasks& files;
  const DiskSpace& disk;
  std::function<std::unique_ptr<JournalSink>()> newJournal;
  std::string timingTrack;
  std::function<void()> beep;
  /// What earlier runs left behind.
  std::function<LeftBehind()> findTakes;
};

/// The recording panel, its keys and its menu: hands what the user wants to the session, and the
/// session the time.
class SessionCommands : public QObject {
 public:
  struct Parts {
    Instrument& instrument;
    Heartbeat& heartbeat;
    SessionWindow& view;
    TransportPanel& panel;
    Dialogs& dialogs;
    SessionSurroundings surroundings;
    std::function<CalendarTime()> wall;
    std::function<Now()> now;
    std::string stateFolder;
  };

  /// All references must outlive this.
  explicit SessionCommands(Parts parts);

  /// Offers what earlier runs left behind, then opens the session at `path`, empty for none. A
  /// recovered recording is not saved yet: it stays, and the other is not opened.
  void begin(const std::string& path);

  /// A key that is the session's: R, S, P, O, L, <, >.
  void key(Key key);

  void recordingSetup() { m_view.openRecordingSetup(); }
  void setAudio(bool on);
  void testControl();
  void panelHidden();
  void refresh() { m_view.refreshTransport(); }
  Session& session() { return m_session; }

 private:
  void joinPanel();
  void openSession(const std::string& path);
  void arm();
  void poll();

  /// Calls `what(session, now)` at the present time.
  template <typename What>
  void tell(What what) {
    m_heartbeat.tell([&](Instrument&, const Now& now) { what(m_session, now); });
  }

  Heartbeat& m_heartbeat;
  SessionWindow& m_view;
  TransportPanel& m_panel;
  Dialogs& m_dialogs;
  std::function<LeftBehind()> m_findTakes;
  FoundTakes m_foundTakes;
  Session m_session;
  QTimer m_poll{this};
};

}  // namespace qv3
