#include "app/machine.h"

#include <QApplication>
#include <QFont>
#include <QSessionManager>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include "app/window/programicon.h"
#include "display/accessiblevalue.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/disk/foundspool.h"
#include "recording/journalloader.h"

namespace qv3 {
namespace {

/// Paths on the command line count from the folder that the user was in.
std::string madeAbsolute(const std::string& path) {
  std::error_code error;
  const auto absolute =
      path.empty() ? std::filesystem::path() : std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

StoreResult enterFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::current_path(folder, error);
  return {error ? error.message() : std::string()};
}

/// The variable and the file of the state folder; what the command line named stays.
void namePortsElsewhere(PortTable& ports) {
  const std::string variable = qEnvironmentVariable("QV3_VARNEL_PORTS").toStdString();
  for (const std::string& error : ports.nameAll(variable, ',')) say(error);
  std::ifstream file("qv3_Varnel.ports");
  const std::string entries{std::istreambuf_iterator<char>(file), {}};
  for (const std::string& error : ports.nameAll(entries, '\n')) say(error);
}

Now now() {
  return {steadyTime(), timeOfDay()};
}

std::string fileStamp() {
  const LocalTime time = localTime();
  return formatFileStamp({time.year, time.month, time.day, time.hour, time.minute, time.second});
}

/// Reads a recording out of its journal, and makes its sound whole.
Take readTake(std::unique_ptr<std::istream> journal, std::uint64_t size, const std::string& spool) {
  constexpr std::size_t kPiece = 1 << 20;
  JournalLoader loader(std::move(journal), size, {});
  while (loader.step(kPiece) == JournalLoader::State::Loading) {
  }
  Take take = loader.takeRecovered();
  if (take.withSound) take.sound = mendFoundSpool(spool, take.records);
  return take;
}

FoundTake foundTake(RecoveryOffer offer) {
  FoundTake take;
  take.name = offer.header.name;
  take.samples = offer.samples;
  take.read = [path = offer.journal->path(), spool = offer.journal->spoolPath(),
               size = offer.size] {
    return readTake(std::make_unique<std::ifstream>(path, std::ios::binary), size, spool);
  };
  take.journal = std::move(offer.journal);
  return take;
}

Desktop desktop(const ProgramFolders& folders) {
  return {[] {
            const std::string path = qEnvironmentVariable("PATH").toStdString();
            return showSystemInfo(systemInfoPrograms(path));
          },
          [guide = folders.data("qv3 Varnel User Guide V1.0.pdf")] { openDocument(guide); }};
}

}  // namespace

Machine::Machine(const Options& options, PortTable ports, const Substitutes& substitutes)
    : m_folders(folderSources(options.home)),
      m_wait(timeOfDay),
      m_recovery(m_folders.state() + "/recovery", m_files),
      m_nextTake(m_recovery, fileStamp,
                 [this](const std::string& reason) { m_program->tellJournalFailure(reason); }),
      m_timingTrack(m_folders.data("dummy.mp3")),
      m_sound(m_timingTrack, [this] { return m_nextTake.nextSpool(); }),
      m_program(std::make_unique<Program>(surroundings(options, std::move(ports), substitutes))),
      m_termination(
          std::make_unique<TerminationSignals>([this](int) { m_program->endSilently(); })) {
  outliveFileSizeLimit();
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, &m_program->window(),
                   [this](QSessionManager&) { m_program->endSilently(); });
}

Surroundings Machine::surroundings(const Options& options, PortTable ports,
                                   const Substitutes& substitutes) {
  const std::string captureFile = madeAbsolute(options.capture);
  const std::string sessionFile = madeAbsolute(options.session);
  if (const std::string error = m_folders.createState(); !error.empty()) say(error);
  (void)enterFolder(m_folders.state());
  namePortsElsewhere(ports);
  MediaPort& media = substitutes.media ? substitutes.media(m_sound.media()) : m_sound.media();
  const DiskSpace& disk = substitutes.disk != nullptr ? *substitutes.disk : m_files;
  return {m_port,
          std::move(ports),
          m_wait,
          [this] { m_wait.giveUp(); },
          m_store,
          m_folders.state(),
          [this] { return enterFolder(m_folders.state()); },
          now,
          [] { return QDateTime::currentDateTime(); },
          [] { QCoreApplication::exit(); },
          {media, m_sound, m_files, disk, [this] { return m_nextTake.newJournal(); }, m_timingTrack,
           [] { QApplication::beep(); }, [this] { return leftBehind(); }},
          desktop(m_folders),
          captureFile,
          sessionFile,
          m_folders.data("samples")};
}

LeftBehind Machine::leftBehind() {
  RecoveryFolder::Found found = m_recovery.scan();
  LeftBehind left;
  for (RecoveryOffer& offer : found.offers) left.takes.push_back(foundTake(std::move(offer)));
  left.unreadable = std::move(found.unreadable);
  return left;
}

void prepareApplication() {
  QApplication::setApplicationName(QStringLiteral("qv3-varnel"));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setDesktopFileName(QStringLiteral("org.qv3varnel.qv3varnel"));
  QApplication::setWindowIcon(programIcon());
  // The read-outs ask for their font by a name that no face has.
  QFont::insertSubstitution(QStringLiteral("Aerial"), QStringLiteral("Liberation Sans"));
  installAccessibleValues();
}

void say(const std::string& text) {
  std::fprintf(stderr, "qv3-varnel: %s\n", text.c_str());
}

}  // namespace qv3
