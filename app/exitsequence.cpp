#include "app/exitsequence.h"

#include <utility>

namespace qv3 {
namespace {

constexpr std::int32_t kAutoSaveOn = 1;
constexpr std::int32_t kAutoSavePrompt = 2;

}  // namespace

Notice configNotSaved() {
  return {QStringLiteral("msgConfigNotSaved"), QStringLiteral("Save Config File"),
          QStringLiteral("Error Saving Session Config File")};
}

ExitSequence::ExitSequence(Parts parts) : m_parts(std::move(parts)) {}

void ExitSequence::request() {
  if (m_stage != Stage::Idle || m_parts.dialogs.anyOpen()) return;
  begin();
}

void ExitSequence::requestSilently() {
  m_silent = true;
  if (m_stage == Stage::Idle) {
    begin();
  } else {
    m_parts.dialogs.silence();
  }
}

void ExitSequence::begin() {
  m_stage = Stage::Requested;
  m_parts.waits.giveUp();
  if (m_silent) m_parts.dialogs.silence();
  // What waits comes back through waitGivenUp(), when nothing of it is left to run.
  if (!m_parts.waits.running()) endUnderWay();
}

void ExitSequence::waitGivenUp() {
  endUnderWay();
}

/// Before the stage of closing: a recording goes on while its question stands, and No leaves
/// everything as it was.
void ExitSequence::endUnderWay() {
  if (m_stage != Stage::Requested) return;
  m_stage = Stage::Ending;
  if (m_silent) {
    endSilently();
    return;
  }
  m_parts.underWay.end([this](bool go) {
    if (go) {
      close();
    } else if (m_silent) {
      endSilently();  // the signal came while the question stood
    } else {
      stay();
    }
  });
}

void ExitSequence::endSilently() {
  m_parts.underWay.endSilently([this] { close(); });
}

/// Everything goes on, but for a search: it was given up and found no meter.
void ExitSequence::stay() {
  m_stage = Stage::Idle;
  m_parts.waits.resume();
  m_parts.heartbeat.tell([](Instrument& meter, const Now& now) {
    if (meter.operation() == Operation::Probing) meter.disconnected(now);
  });
}

void ExitSequence::close() {
  if (m_stage != Stage::Ending) return;
  m_stage = Stage::Closing;
  m_parts.heartbeat.tell(
      [](Instrument& meter, const Now&) { meter.setOperation(Operation::Closing); });
  const ProgramSettings live = m_parts.heartbeat.instrument().liveSettings();
  if (m_parts.configFile.WriteSessionConfig(live, m_parts.window.currentPlace())) {
    writeSettings();
  } else {
    m_parts.dialogs.error(configNotSaved(), [this] { writeSettings(); });
  }
}

/// Whether writing worked is not looked at: there is nobody left who could do better.
void ExitSequence::writeSettings() {
  const ProgramSettings live = m_parts.heartbeat.instrument().liveSettings();
  (void)m_parts.settingsFile.SaveRecordingSettings(live);
  const bool changed = !m_parts.settingsFile.SettingsUnchanged(live);
  if (live.AutoSaveMode == kAutoSaveOn) saveDisplaySettings();
  if (live.AutoSaveMode == kAutoSavePrompt && changed) {
    askAboutSettings();
  } else {
    finish();
  }
}

void ExitSequence::askAboutSettings() {
  const QString path =
      QString::fromStdString(m_parts.heartbeat.instrument().liveSettings().IniPath);
  m_parts.dialogs.question(
      {QStringLiteral("msgSaveSettings"), QStringLiteral("Program settings have changed"),
       QStringLiteral("Save settings?\n\n( to %1)").arg(path)},
      [this](bool save) {
        if (save) saveDisplaySettings();
        finish();
      },
      QMessageBox::Yes);
}

void ExitSequence::saveDisplaySettings() {
  (void)m_parts.settingsFile.SaveDisplaySettings(m_parts.heartbeat.instrument().liveSettings());
}

void ExitSequence::finish() {
  m_parts.closeSound();
  m_parts.heartbeat.tell([](Instrument& meter, const Now&) { meter.core().port.Com_Close(); });
  m_parts.quit();
}

}  // namespace qv3
