#include "app/program.h"

#include <utility>

#include "settings/conversions.h"

namespace qv3 {

Program::Program(Surroundings surroundings)
    : m_around(std::move(surroundings)),
      m_port(m_around.port),
      m_display(m_window, m_settings, m_around.localTime, [this] { refreshMenusSoon(); }),
      m_instrument(m_settings, m_port, m_display, m_silence),
      m_heartbeat(m_instrument, m_port, m_around.now),
      m_dialogs(m_window),
      m_waits(m_around.waiter, m_around.giveUpWaits),
      m_settingsFile(m_around.store, m_around.stateFolder),
      m_configFile(m_around.store, m_around.enterStateFolder),
      m_search(m_port, m_around.ports, m_waits,
               [this](const std::string& text) { showSearchStatus(text); }),
      m_settingsCommands(m_settings, m_settingsFile, m_heartbeat, m_dialogs,
                         [this] { refreshMenusSoon(); }),
      m_connection(m_settings, m_search, m_heartbeat, m_dialogs, connectionEvents()),
      m_exit(
          {m_heartbeat, m_window, m_dialogs, m_waits, m_settingsFile, m_configFile, m_around.quit}),
      m_startUp({m_settings, m_settingsFile, m_configFile, m_window, m_display, m_dialogs, m_waits,
                 m_heartbeat, m_search, m_around.ports, m_settingsCommands, m_connection, m_exit}),
      m_handlers(makeHandlers()),
      m_menus(*m_window.menuBar(), [this](const MenuRow& row) { choose(row); }),
      m_keyFilter(m_window, keys()) {
  m_window.setEvents({[this] {
                        m_window.layOut();
                        m_heartbeat.tell(
                            [](Instrument& meter, const Now& now) { meter.Draw_Panel(now); });
                      },
                      [this] { m_exit.request(); }});
  joinMouse();
  m_heartbeat.start([this] {
    m_display.Update_Clock();
    checkCapture();
  });
  if (!m_around.captureFile.empty()) m_capture.emplace(m_around.captureFile, m_settings);
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
  };
}

ConnectionCommands::Events Program::connectionEvents() {
  return {[this] { beginCapture(); }, [this] { m_exit.waitGivenUp(); }};
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
        return m_heartbeat.tell(
            [&](Instrument& meter, const Now& now) { return meter.keyDown(key, now).consumed; });
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
  state.needleTest = m_instrument.state().NeedleTest;
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
}

}  // namespace qv3
