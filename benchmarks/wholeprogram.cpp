#include "benchmarks/wholeprogram.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QTimer>
#include <filesystem>

#include "platform/clock.h"
#include "platform/paths.h"

namespace qv3::bench {
namespace {

std::string stamp() {
  return "bench";
}

std::string timingTrack() {
  return ProgramFolders(folderSources({})).data("dummy.mp3");
}

}  // namespace

WholeProgram::WholeProgram(const std::string& home)
    : m_wait(timeOfDay),
      m_recovery(home + "/recovery", m_files),
      m_nextTake(m_recovery, stamp, [](const std::string&) {}),
      m_sound(timingTrack(), [this] { return m_nextTake.nextSpool(); }) {
  const auto enter = [home] {
    std::error_code error;
    std::filesystem::current_path(home, error);
    return StoreResult{error ? error.message() : std::string()};
  };
  (void)enter();
  m_program = std::make_unique<Program>(Surroundings{
      m_port,
      PortTable(),
      m_wait,
      [this] { m_wait.giveUp(); },
      m_store,
      home,
      enter,
      [] {
        return Now{steadyTime(), timeOfDay()};
      },
      [] { return QDateTime::currentDateTime(); },
      [] { QCoreApplication::exit(); },
      {m_sound.media(), m_sound, m_files, m_files, [this] { return m_nextTake.newJournal(); },
       timingTrack(), [] {}, [] { return LeftBehind(); }},
      {[] { return false; }, [] {}},
      {},
      {}});
  QTimer::singleShot(0, &m_program->window(), [this] { m_program->start(); });
  runUntil([this] { return m_program->window().isVisible() && doing(Operation::None); });
  runFor(std::chrono::milliseconds(500));
}

void WholeProgram::load(const std::string& path, const std::function<void()>& chosen) {
  press("cmdLoad");
  QFileDialog* dialog = nullptr;
  runUntil([&] {
    dialog = m_program->window().findChild<QFileDialog*>(QStringLiteral("dlgLoad"));
    return dialog != nullptr && dialog->isVisible();
  });
  dialog->selectFile(QString::fromStdString(path));
  runFor(std::chrono::milliseconds(500));
  if (chosen) chosen();
  static_cast<QDialog*>(dialog)->accept();
  runUntil([this] { return doing(Operation::None); });
}

void WholeProgram::press(const char* button) {
  auto* found = m_program->window().findChild<QAbstractButton*>(QLatin1String(button));
  runUntil([&] { return found->isEnabled(); });
  found->click();
}

bool WholeProgram::doing(Operation operation) const {
  return m_program->instrument().operation() == operation;
}

void runUntil(const std::function<bool()>& reached) {
  while (!reached()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void runFor(std::chrono::milliseconds time) {
  QEventLoop loop;
  QTimer::singleShot(time, &loop, &QEventLoop::quit);
  loop.exec();
}

}  // namespace qv3::bench
