#include "app/program.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <utility>

#include "settings/conversions.h"

namespace qv3 {
namespace {

CalendarTime calendarTime(const QDateTime& moment) {
  const QDate date = moment.date();
  const QTime time = moment.time();
  return {date.year(), date.month(), date.day(), time.hour(), time.minute(), time.second()};
}

}  // namespace

Program::Program(Surroundings surroundings)
    : m_around(std::move(surroundings)),
      m_port(m_around.port),
      m_sound(m_around.session.media),
      m_display(m_window, m_settings, m_around.localTime, [this] { refreshMenusSoon(); }),
      m_instrument(m_settings, m_port, m_display, m_sound),
      m_heartbeat(m_instrument, m_port, m_around.now),
      m_dialogs(m_window),
      m_waits(m_around.waiter, m_around.giveUpWaits),
      m_settingsFile(m_around.store, m_around.stateFolder),
      m_configFile(m_around.store, m_around.enterStateFolder),
      m_search(m_port, m_around.ports, m_waits,
               [this](const std::string& text) { showSearchStatus(text); }),
      m_settingsCommands(
          m_settings, m_settingsFile, m_heartbeat, m_dialogs, [this] { refreshMenusSoon(); },
          [this] { settingsApplied(); }),
      m_connection(m_settings, m_search, m_heartbeat, m_dialogs, connectionEvents()),
      m_sessionWindow(
          {m_window.transport(), m_display, m_dialogs, m_heartbeat, m_settings,
           m_around.session.files, [this] { refreshMenusSoon(); },
           [this](const QString& wanted, bool toLoad) { return usableFolder(wanted, toLoad); }}),
      m_session({m_instrument, m_heartbeat, m_sessionWindow, m_window.transport(), m_dialogs,
                 m_around.session, [this] { return calendarTime(m_around.localTime()); },
                 m_around.now, m_around.stateFolder}),
      m_help(m_dialogs, m_around.desktop, m_connection.identity()),
      m_exit({m_heartbeat, m_window, m_dialogs, m_waits, m_settingsFile, m_configFile, underWay(),
              [this] { closeSound(); }, m_around.quit}),
      m_startUp({m_settings, m_settingsFile, m_configFile, m_window, m_display, m_dialogs, m_waits,
                 m_heartbeat, m_search, m_around.ports, m_settingsCommands, m_connection, m_exit,
                 [this] { m_session.begin(m_around.sessionFile); }}),
      m_handlers(makeHandlers()),
      m_menus(*m_window.menuBar(), [this](const MenuRow& row) { choose(row); }),
      m_keyFilter(m_window, keys()) {
  // Their timers are found by name, as every control is.
  m_heartbeat.setParent(&m_window);
  m_session.setParent(&m_window);
  m_window.setEvents({[this] {
                        m_window.layOut();
                        m_heartbeat.tell(
                            [](Instrument& meter, const Now& now) { meter.Draw_Panel(now); });
                      },
                      [this] { m_exit.request(); }});
  joinMouse();
  m_window.transport().showNothingLoaded();
  QObject::connect(&m_window.transport(), &TransportPanel::neededHeightChanged, &m_window, [this] {
    m_heartbeat.tell([this](Instrument& meter, const Now& now) {
      m_display.layoutWindow();
      meter.Draw_Panel(now);
    });
  });
  m_heartbeat.start([this] {
    m_display.Update_Clock();
    checkCapture();
  });
  if (!m_around.captureFile.empty()) m_capture.emplace(m_around.captureFile, m_settings);
}

void Program::start() {
  if (!std::exchange(m_begun, true)) m_startUp.run();
}

/// What the last run left stays as it is where nothing of it was read.
void Program::endSilently() {
  if (std::exchange(m_begun, true)) {
    m_exit.requestSilently();
  } else {
    m_around.quit();
  }
}

void Program::choose(const MenuRow& row) {
  const auto handler = m_handlers.find(row.act);
  if (handler != m_handlers.end() && menuState().enabled(row)) handler->second(row);
  refreshMenusSoon();
}

std::map<Act, Program::Handler> Program::makeHandlers() {
  SettingsCommands& settings = m_settingsCommands;
  ConnectionCommands& connection = m_connection;
  return {
      {Act::Choose, [&](const MenuRow& row) { settings.choose(row); }},
      {Act::Toggle, [&](const MenuRow& row) { settings.toggle(row); }},
      {Act::PickColour, [&](const MenuRow& row) { settings.pickColour(row); }},
      {Act::DefaultColours, [&](const MenuRow&) { settings.defaultColours(); }},
      {Act::MeterStyle, [&](const MenuRow&) { settings.meterStyle(); }},
      {Act::LoadSettings, [&](const MenuRow&) { settings.loadSettings(); }},
      {Act::SaveSettings, [&](const MenuRow&) { settings.saveSettings(); }},
      {Act::SaveSettingsAs, [&](const MenuRow&) { settings.saveSettingsAs(); }},
      {Act::Exit, [this](const MenuRow&) { m_exit.request(); }},
      {Act::Connect, [&](const MenuRow&) { connection.connectMeter(); }},
      {Act::Port,
       [&](const MenuRow& row) { connection.choosePort(toLong(row.value).value_or(0)); }},
      {Act::SensorLocal, [&](const MenuRow&) { connection.chooseSensor(false); }},
      {Act::SensorRemote, [&](const MenuRow&) { connection.chooseSensor(true); }},
      {Act::NeedleTest, [&](const MenuRow&) { connection.toggleNeedleTest(); }},
      {Act::TestControl, [this](const MenuRow&) { m_session.testControl(); }},
      {Act::TestBeep, [this](const MenuRow&) { m_session.session().toggleTestBeep(); }},
      {Act::TestSpeed,
       [this](const MenuRow& row) {
         m_session.session().setTestPeriod(toLong(row.value).value_or(0));
       }},
      {Act::ViewRecording, [this](const MenuRow&) { viewRecording(); }},
      {Act::RecordingSetup, [this](const MenuRow&) { m_session.recordingSetup(); }},
      {Act::Audio, [this](const MenuRow& row) { m_session.setAudio(row.value == "True"); }},
      {Act::About, [this](const MenuRow&) { m_help.about(); }},
      {Act::Help, [this](const MenuRow&) { m_help.help(); }},
  };
}

ConnectionCommands::Events Program::connectionEvents() {
  return {[this] { beginCapture(); }, [this] { m_exit.waitGivenUp(); }};
}

ExitSequence::UnderWay Program::underWay() {
  return {[this](std::function<void(bool)> go) {
            m_heartbeat.tell(
                [&](Instrument&, const Now&) { m_session.session().prepareExit(std::move(go)); });
          },
          [this](std::function<void()> go) {
            m_heartbeat.tell([&](Instrument&, const Now&) {
              m_session.session().prepareSilentExit(std::move(go));
            });
          }};
}

void Program::tellJournalFailure(const std::string& reason) {
  m_sessionWindow.tell(
      {"msgJournal", "Recording", "The recording cannot be kept safe from a crash: " + reason}, {});
}

/// Twice, whether or not something is open.
void Program::closeSound() {
  m_around.session.media.send("close WavFile");
  m_around.session.media.send("close WavFile");
}

void Program::viewRecording() {
  m_settings.RecordVisible = !m_settings.RecordVisible;
  if (!m_settings.RecordVisible) m_session.panelHidden();
  m_heartbeat.tell(
      [](Instrument& meter, const Now& now) { meter.settingChanged("RecordVisible", now); });
  m_session.refresh();
}

/// As choosing View, Recording would: nothing stays loaded behind a hidden panel.
void Program::settingsApplied() {
  if (!m_settings.RecordVisible && m_session.session().take().loaded) m_session.panelHidden();
  m_session.refresh();
}

/// A folder that is gone is not written back: the next one of these is offered instead.
QString Program::usableFolder(const QString& wanted, bool toLoad) const {
  const QString saved = QString::fromStdString(m_settings.SavePath);
  const QString samples = toLoad ? QString::fromStdString(m_around.samplesFolder) : QString();
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  for (const QString& folder : {wanted, saved, samples, documents}) {
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
  }
  return QDir::homePath();
}

void Program::joinMouse() {
  QObject::connect(&m_window.dial(), &DialPanel::pressed, &m_window, [this] {
    m_heartbeat.tell([](Instrument& meter, const Now& now) { meter.panelPressed(now); });
  });
  const auto bdMouse = [this](bool down) {
    m_heartbeat.tell([&](Instrument& meter, const Now& now) { meter.bdMouse(down, now); });
  };
  QObject::connect(&m_window.bd(), &BdPanel::pressed, &m_window, [bdMouse] { bdMouse(true); });
  QObject::connect(&m_window.bd(), &BdPanel::released, &m_window, [bdMouse] { bdMouse(false); });
  QObject::connect(
      &m_window.knob(), &KnobPanel::mouseUsed, &m_window, [this](int button, double x, double y) {
        m_heartbeat.tell(
            [&](Instrument& meter, const Now& now) { meter.knobMouse(x, y, button, now); });
      });
}

KeyFilter::Keys Program::keys() {
  return {
      [this](Key key) {
        const KeyResult result = m_heartbeat.tell(
            [&](Instrument& meter, const Now& now) { return meter.keyDown(key, now); });
        if (result.key != Key::Other) m_session.key(result.key);
        return result.consumed;
      },
      [this] { m_heartbeat.tell([](Instrument& meter, const Now& now) { meter.keyUp(now); }); }};
}

void Program::beginCapture() {
  if (!m_capture) return;
  m_heartbeat.tell([this](Instrument& meter, const Now& now) {
    m_capture->begin(meter, now);
    meter.setTap(&*m_capture);
  });
  checkCapture();
}

/// A capture that cannot be written ends, and is said once.
void Program::checkCapture() {
  if (!m_capture || m_capture->failure().empty()) return;
  const QString reason = QString::fromStdString(m_capture->failure());
  m_instrument.setTap(nullptr);
  m_capture.reset();
  QMetaObject::invokeMethod(
      &m_window,
      [this, reason] {
        m_dialogs.error({QStringLiteral("msgCapture"), QStringLiteral("Capture"), reason}, [] {});
      },
      Qt::QueuedConnection);
}

void Program::showSearchStatus(const std::string& text) {
  m_heartbeat.tell(
      [&](Instrument& meter, const Now&) { meter.showStatus(text, m_settings.Text_Color); });
  m_startUp.showStatus(QString::fromStdString(text));
}

MenuState Program::menuState() {
  MenuState state{m_instrument.situation(), m_settings, m_around.ports};
  state.sensor = m_instrument.core().sensorMark;
  state.needleTest = m_instrument.needleTestChosen();
  state.testBeeps = m_session.session().test().beeps;
  state.testPeriod = m_session.session().test().period;
  return state;
}

/// Once however often it is asked for in one turn of the event loop: enabling and disabling every
/// item is dear.
void Program::refreshMenusSoon() {
  if (m_menusBehind) return;
  m_menusBehind = true;
  QMetaObject::invokeMethod(
      &m_window, [this] { refreshMenus(); }, Qt::QueuedConnection);
}

void Program::refreshMenus() {
  m_menusBehind = false;
  m_menus.refresh(menuState());
  m_window.transport().setState(m_session.session().transport());
}

}  // namespace qv3
