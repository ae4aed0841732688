#include "app/session/sessioncommands.h"

#include <memory>
#include <utility>

namespace qv3 {
namespace {

std::string withSeparator(std::string folder) {
  if (!folder.ends_with('/')) folder += '/';
  return folder;
}

SessionWorld worldOf(SessionCommands::Parts& parts) {
  SessionSurroundings& around = parts.surroundings;
  return {parts.instrument,   around.media,
          around.spool,       around.files,
          around.disk,        parts.view,
          around.newJournal,  parts.wall,
          parts.now,          withSeparator(parts.stateFolder),
          around.timingTrack, around.beep};
}

}  // namespace

SessionCommands::SessionCommands(Parts parts)
    : m_heartbeat(parts.heartbeat),
      m_view(parts.view),
      m_panel(parts.panel),
      m_dialogs(parts.dialogs),
      m_findTakes(parts.surroundings.findTakes),
      m_foundTakes(
          parts.dialogs,
          [this](Take take, std::unique_ptr<JournalSink> journal) {
            tell([&](Session& s, const Now&) { s.recover(std::move(take), std::move(journal)); });
          }),
      m_session(worldOf(parts)) {
  m_poll.setObjectName(QStringLiteral("tmrPoll"));
  m_poll.setTimerType(Qt::PreciseTimer);
  connect(&m_poll, &QTimer::timeout, this, [this] { poll(); });
  m_heartbeat.setAfter([this](const Now& now) { m_session.received(now); }, [this] { arm(); });
  joinPanel();
}

void SessionCommands::begin(const std::string& path) {
  m_foundTakes.offer(m_findTakes(), [this, path](bool recovered) {
    if (path.empty()) return;
    if (!recovered) return openSession(path);
    m_dialogs.warning({QStringLiteral("msgNotOpened"), QStringLiteral("Open Session"),
                       QStringLiteral("\"%1\" was not opened: the recovered recording is to be "
                                      "saved first.")
                           .arg(QString::fromStdString(path))},
                      [] {});
  });
}

void SessionCommands::openSession(const std::string& path) {
  tell([&](Session& s, const Now&) { s.open(path); });
}

void SessionCommands::joinPanel() {
  const auto join = [this](auto signal, auto what) {
    connect(&m_panel, signal, this, [this, what] { tell(what); });
  };
  join(&TransportPanel::recordClicked, [](Session& s, const Now&) { s.cmdRecord(); });
  join(&TransportPanel::stopClicked, [](Session& s, const Now& now) { s.cmdStop(now); });
  join(&TransportPanel::playClicked, [](Session& s, const Now& now) { s.cmdPlay(now); });
  join(&TransportPanel::revClicked, [](Session& s, const Now& now) { s.skip(false, now); });
  join(&TransportPanel::fwdClicked, [](Session& s, const Now& now) { s.skip(true, now); });
  join(&TransportPanel::loopClicked, [](Session& s, const Now&) { s.cmdLoop(); });
  join(&TransportPanel::loadClicked, [](Session& s, const Now&) { s.cmdLoad(); });
  join(&TransportPanel::numberedFilesRequested, [](Session& s, const Now&) { s.listNumbered(); });
  join(&TransportPanel::saveClicked, [](Session& s, const Now&) { s.cmdSave(); });
  join(&TransportPanel::saveFileAsClicked, [](Session& s, const Now&) { s.saveFileAs(); });
  join(&TransportPanel::wholeRangeRequested, [](Session& s, const Now&) { s.wholeRange(); });
  connect(&m_panel, &TransportPanel::numberedFileChosen, this, [this](const QString& number) {
    tell([&](Session& s, const Now&) { s.loadNumbered(number.toStdString()); });
  });
  connect(&m_panel, &TransportPanel::seekRequested, this,
          [this](int x) { tell([&](Session& s, const Now& now) { s.seekTo(x, now); }); });
  connect(&m_panel, &TransportPanel::rangeRequested, this, [this](int from, int to) {
    tell([&](Session& s, const Now&) { s.setRange(from, to); });
  });
}

void SessionCommands::key(Key pressed) {
  tell([&](Session& s, const Now& now) {
    switch (pressed) {
      case Key::R:
        s.cmdRecord();
        break;
      case Key::S:
        s.cmdStop(now);
        break;
      case Key::P:
        s.cmdPlay(now);
        break;
      case Key::O:
        s.cmdLoad();
        break;
      case Key::L:
        s.listNumbered();
        break;
      case Key::Less:
        s.skip(false, now);
        break;
      case Key::Greater:
        s.skip(true, now);
        break;
      default:
        break;
    }
  });
}

void SessionCommands::setAudio(bool on) {
  tell([&](Session& s, const Now&) { s.setAudio(on); });
}

void SessionCommands::testControl() {
  tell([](Session& s, const Now& now) { s.testControl(now); });
}

void SessionCommands::panelHidden() {
  tell([](Session& s, const Now&) { s.panelHidden(); });
}

/// After everything that was told: as often as what is under way needs.
void SessionCommands::arm() {
  const auto period = m_session.pollPeriod();
  if (!period) {
    m_poll.stop();
  } else if (!m_poll.isActive() || m_poll.intervalAsDuration() != *period) {
    m_poll.start(*period);
  }
}

void SessionCommands::poll() {
  tell([](Session& s, const Now& now) { s.poll(now); });
}

}  // namespace qv3
