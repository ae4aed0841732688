#include <QCoreApplication>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <random>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/paths.h"
#include "platform/sound/soundfactory.h"
#include "platform/sound/steadynow.h"
#include "recording/sound/disksoundfiles.h"
#include "recording/sound/lazybackend.h"
#include "recording/sound/wavfile.h"
#include "recording/soundcommands.h"
#include "recording/soundwords.h"

namespace {

namespace fs = std::filesystem;

constexpr int kUnusable = 2;
constexpr const char* kTimingTrack = "dummy.mp3";

constexpr const char* kHelp =
    "Usage: sound-console [--data DIR] [--verbose]\n"
    "\n"
    "Speaks to the sound device. Every line of the standard input is a command; the answer is a\n"
    "line with its code, a blank and the reply. Empty lines answer nothing.\n"
    "\n"
    "  sleep MS    a line that waits so many milliseconds and answers nothing\n"
    "\n"
    "  --data DIR  where dummy.mp3 lies, the silent timing track; else as the program finds it\n"
    "  --verbose   tell on the standard error what the sound library complains of\n"
    "  --help      this text\n"
    "\n"
    "Sound that was recorded and not saved goes at the end.\n";

struct Options {
  std::string data;
  bool verbose = false;
  bool help = false;
};

std::optional<Options> parse(const std::vector<std::string>& arguments) {
  Options options;
  for (std::size_t index = 0; index < arguments.size(); ++index) {
    const std::string& argument = arguments[index];
    if (argument == "--help") {
      options.help = true;
    } else if (argument == "--verbose") {
      options.verbose = true;
    } else if (argument == "--data" && index + 1 < arguments.size()) {
      options.data = arguments[++index];
    } else {
      return std::nullopt;
    }
  }
  return options;
}

std::string timingTrack(const std::string& data) {
  if (data.empty()) return qv3::ProgramFolders(qv3::folderSources({})).data(kTimingTrack);
  return (fs::absolute(data) / kTimingTrack).string();
}

/// The folder of the spools; it goes with the program.
class SpoolFolder {
 public:
  SpoolFolder() {
    std::random_device random;
    std::error_code ignored;
    m_path = fs::temp_directory_path(ignored) / ("sound-console-" + std::to_string(random()));
    fs::create_directory(m_path, ignored);
  }
  SpoolFolder(const SpoolFolder&) = delete;
  SpoolFolder& operator=(const SpoolFolder&) = delete;
  ~SpoolFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
  }

  std::string next() { return (m_path / (std::to_string(++m_count) + ".spool")).string(); }

 private:
  fs::path m_path;
  int m_count = 0;
};

/// The milliseconds of a `sleep` line.
std::optional<std::chrono::milliseconds> sleepTime(const std::string& line) {
  const qv3::SoundWords split = qv3::splitSoundCommand(line);
  if (split.words.size() != 2 || !split.words[0].is("sleep")) return std::nullopt;
  const qv3::SoundNumber number = qv3::parseSoundNumber(split.words[1].text);
  if (number.code != 0) return std::nullopt;
  return std::chrono::milliseconds(number.value);
}

void converse(qv3::SoundCommands& commands) {
  std::string line;
  while (std::getline(std::cin, line)) {
    if (line.ends_with('\r')) line.pop_back();
    if (line.empty()) continue;
    if (const auto time = sleepTime(line)) {
      std::this_thread::sleep_for(*time);
      continue;
    }
    const qv3::MediaReply reply = commands.send(line);
    std::cout << reply.code << ' ' << reply.text << std::endl;
  }
}

/// False if the sound server hangs.
bool run(const Options& options) {
  SpoolFolder spools;
  qv3::DiskSoundFiles files;
  qv3::LazyBackend backend(qv3::makeSoundBackend);
  {
    qv3::WavFile device({backend, files, qv3::steadyNow, [&spools] { return spools.next(); },
                         timingTrack(options.data)});
    qv3::SoundCommands commands(device);
    converse(commands);
  }
  return backend.shutDown();
}

void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

}  // namespace

int main(int argc, char** argv) {
  const std::optional<Options> options = parse({argv + 1, argv + argc});
  if (!options || options->help) {
    (options ? std::cout : std::cerr) << kHelp;
    return options ? 0 : kUnusable;
  }
  if (!options->verbose) qInstallMessageHandler(dropMessage);
  const QCoreApplication application(argc, argv);
  if (!run(*options)) std::_Exit(0);
  return 0;
}
