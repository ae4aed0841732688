#include <QApplication>
#include <QFont>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "app/options.h"
#include "app/program.h"
#include "app/version.h"
#include "app/window/programicon.h"
#include "display/accessiblevalue.h"
#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/disk/diskfiles.h"
#include "platform/disk/foundspool.h"
#include "platform/disk/nexttake.h"
#include "platform/disk/recoveryfolder.h"
#include "platform/paths.h"
#include "platform/pumpedwait.h"
#include "platform/qtserialport.h"
#include "platform/signals.h"
#include "platform/soundmachine.h"
#include "recording/journalloader.h"
#include "settings/disktextstore.h"

namespace {

constexpr int kBadCommandLine = 2;

void say(const std::string& text) {
  std::fprintf(stderr, "qv3-varnel: %s\n", text.c_str());
}

/// Paths on the command line count from the folder that the user was in.
std::string madeAbsolute(const std::string& path) {
  std::error_code error;
  const auto absolute =
      path.empty() ? std::filesystem::path() : std::filesystem::absolute(path, error);
  return error ? path : absolute.string();
}

/// What keeps the named session from being a file; what is in it the loader tells.
std::string whyNoSession(const std::string& path) {
  std::error_code error;
  if (path.empty() || std::filesystem::is_regular_file(path, error)) return {};
  return "\"" + path + "\" cannot be opened: " + (error ? error.message() : "it is not a file");
}

qv3::StoreResult enterFolder(const std::string& folder) {
  std::error_code error;
  std::filesystem::current_path(folder, error);
  return {error ? error.message() : std::string()};
}

/// The variable and the file of the state folder; what the command line named stays.
void namePortsElsewhere(qv3::PortTable& ports) {
  const std::string variable = qEnvironmentVariable("QV3_VARNEL_PORTS").toStdString();
  for (const std::string& error : ports.nameAll(variable, ',')) say(error);
  std::ifstream file("qv3_Varnel.ports");
  const std::string entries{std::istreambuf_iterator<char>(file), {}};
  for (const std::string& error : ports.nameAll(entries, '\n')) say(error);
}

qv3::Now now() {
  return {qv3::steadyTime(), qv3::timeOfDay()};
}

std::string fileStamp() {
  const qv3::LocalTime time = qv3::localTime();
  return qv3::formatFileStamp(
      {time.year, time.month, time.day, time.hour, time.minute, time.second});
}

/// Reads a recording out of its journal, and makes its sound whole.
qv3::Take readTake(std::unique_ptr<std::istream> journal, std::uint64_t size,
                   const std::string& spool) {
  constexpr std::size_t kPiece = 1 << 20;
  qv3::JournalLoader loader(std::move(journal), size, {});
  while (loader.step(kPiece) == qv3::JournalLoader::State::Loading) {
  }
  qv3::Take take = loader.takeRecovered();
  if (take.withSound) take.sound = qv3::mendFoundSpool(spool, take.records);
  return take;
}

std::vector<qv3::FoundTake> foundTakes(qv3::RecoveryFolder& recovery) {
  std::vector<qv3::FoundTake> takes;
  qv3::RecoveryFolder::Found found = recovery.scan();
  for (const std::string& path : found.unreadable) say(path + " cannot be read and is left alone");
  for (qv3::RecoveryOffer& offer : found.offers) {
    qv3::FoundTake& take = takes.emplace_back();
    take.name = offer.header.name;
    take.samples = offer.samples;
    take.read = [path = offer.journal->path(), spool = offer.journal->spoolPath(),
                 size = offer.size] {
      return readTake(std::make_unique<std::ifstream>(path, std::ios::binary), size, spool);
    };
    take.journal = std::move(offer.journal);
  }
  return takes;
}

qv3::Desktop desktop(const qv3::ProgramFolders& folders) {
  return {[] {
            const std::string path = qEnvironmentVariable("PATH").toStdString();
            return qv3::showSystemInfo(qv3::systemInfoPrograms(path));
          },
          [guide = folders.data("qv3 Varnel User Guide V1.0.pdf")] { qv3::openDocument(guide); }};
}

int run(QApplication& application, const qv3::Options& options, qv3::PortTable ports) {
  const std::string captureFile = madeAbsolute(options.capture);
  const std::string sessionFile = madeAbsolute(options.session);
  const qv3::ProgramFolders folders(qv3::folderSources(options.home));
  if (const std::string error = folders.createState(); !error.empty()) say(error);
  (void)enterFolder(folders.state());
  namePortsElsewhere(ports);

  qv3::QtSerialPort port;
  qv3::PumpedWait wait(qv3::timeOfDay);
  qv3::DiskTextStore store;
  qv3::DiskFiles files;
  qv3::RecoveryFolder recovery(folders.state() + "/recovery", files);
  qv3::Program* shown = nullptr;
  qv3::NextTake nextTake(recovery, fileStamp, [&shown](const std::string& reason) {
    if (shown != nullptr) shown->tellJournalFailure(reason);
  });
  const std::string timingTrack = folders.data("dummy.mp3");
  qv3::SoundMachine sound(timingTrack, [&nextTake] { return nextTake.nextSpool(); });
  qv3::Program program(
      {port,
       std::move(ports),
       wait,
       [&wait] { wait.giveUp(); },
       store,
       folders.state(),
       [&folders] { return enterFolder(folders.state()); },
       now,
       [] { return QDateTime::currentDateTime(); },
       [] { QCoreApplication::exit(); },
       {sound.media(), sound, files, files, [&nextTake] { return nextTake.newJournal(); },
        timingTrack, [] { QApplication::beep(); }, [&recovery] { return foundTakes(recovery); }},
       desktop(folders),
       captureFile,
       sessionFile});
  shown = &program;
  const qv3::TerminationSignals termination([&program](int) { program.endSilently(); });
  QObject::connect(&application, &QGuiApplication::commitDataRequest, &application,
                   [&program](QSessionManager&) { program.endSilently(); });
  QTimer::singleShot(0, &application, [&program] { program.start(); });
  const int code = QApplication::exec();
  // A sound server that hangs is not waited for.
  if (!sound.shutDown()) std::_Exit(code);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const auto [options, error] = qv3::parseOptions(arguments);
  qv3::PortTable ports;
  std::string problem = error;
  for (const std::string& entry : options.ports) {
    if (problem.empty()) problem = ports.name(entry);
  }
  if (problem.empty()) problem = whyNoSession(options.session);
  if (!problem.empty()) {
    say(problem + "\nTry --help.");
    return kBadCommandLine;
  }
  if (options.help || options.version) {
    const std::string text = options.help ? qv3::helpText() : "qv3 Varnel " QV3_VERSION "\n";
    std::fputs(text.c_str(), stdout);
    return 0;
  }

  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("qv3-varnel"));
  QApplication::setApplicationVersion(QStringLiteral(QV3_VERSION));
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setDesktopFileName(QStringLiteral("org.qv3varnel.qv3varnel"));
  QApplication::setWindowIcon(qv3::programIcon());
  // The read-outs ask for their font by a name that no face has.
  QFont::insertSubstitution(QStringLiteral("Aerial"), QStringLiteral("Liberation Sans"));
  qv3::installAccessibleValues();
  return run(application, options, std::move(ports));
}
