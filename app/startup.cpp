#include "app/startup.h"

namespace qv3 {
namespace {

/// The first receive event comes after 5 characters, later ones after 6.
constexpr std::size_t kFirstThreshold = 5;
constexpr int kSettleTicks = 2;

}  // namespace

void StartUp::run() {
  m_parts.heartbeat.tell(
      [](Instrument& meter, const Now&) { meter.setOperation(Operation::Starting); });
  const bool known = m_parts.configFile.ReadSessionConfig(m_parts.settings);
  m_splash = std::make_unique<Splash>();
  m_splash->show();
  if (known ||
      m_parts.configFile.WriteSessionConfig(m_parts.settings, m_parts.window.currentPlace())) {
    loadSettings();
  } else {
    m_parts.dialogs.error(configNotSaved(), [this] { loadSettings(); });
  }
}

void StartUp::loadSettings() {
  m_parts.settingsFile.LoadAllSettings(m_parts.settings);
  if (m_parts.exit.requested()) return;  // an exit writes settings: only ones that were loaded
  m_parts.window.setParts(layoutParts(m_parts.settings, m_parts.window.transport().neededHeight()));
  m_parts.window.restorePlace(m_parts.settings.WindowGeometry);
  if (!letEventsGoOn(0)) return;
  openWindow();
  m_parts.search.Init_Ports();
  if (m_parts.settings.ComPort == 0) {
    showStatus(QString::fromLatin1(kNoMeter));
    comeUp(false);
  } else {
    lookForMeter();
  }
}

void StartUp::openWindow() {
  m_parts.display.updateBackColours();
  m_parts.display.refreshControls();
  m_parts.window.show();
  if (m_splash) m_splash->raise();
}

void StartUp::lookForMeter() {
  showStatus(QStringLiteral("Checking for Hardware"));
  if (m_parts.ports.exists(m_parts.settings.ComPort)) {
    const std::optional<bool> answered = m_parts.connection.probeConfiguredPort();
    if (!answered) return;
    if (*answered) {
      comeUp(true);
      return;
    }
  }
  m_parts.connection.searchAll([this](bool found) { comeUp(found); });
}

void StartUp::comeUp(bool found) {
  if (m_parts.exit.requested() || !letEventsGoOn(0)) return;
  m_splash.reset();
  m_parts.settingsCommands.applyAll();
  if (found) {
    m_parts.connection.goLive(kFirstThreshold);
  } else {
    m_parts.connection.standWithout();
  }
  m_parts.heartbeat.tell(
      [](Instrument& meter, const Now&) { meter.setOperation(Operation::Starting); });
  if (!letEventsGoOn(kSettleTicks)) return;
  m_parts.heartbeat.tell(
      [](Instrument& meter, const Now&) { meter.setOperation(Operation::None); });
  m_parts.ready();
}

bool StartUp::letEventsGoOn(int ticks) {
  if (m_parts.waits.TDelay(ticks)) return true;
  m_parts.exit.waitGivenUp();
  return false;
}

void StartUp::showStatus(const QString& text) {
  if (m_splash) m_splash->showStatus(text);
}

}  // namespace qv3
