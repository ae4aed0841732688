// Waits for something to happen on a virtual display and saves its picture.

#include <QImage>
#include <algorithm>
#include <charconv>
#include <chrono>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tools/screen/screenfile.h"

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr const char* kHelp =
    "Usage: screen-shot SCREEN [OPTION]...\n"
    "\n"
    "Looks every 4 ms at the picture of a virtual display. SCREEN is the file that the display\n"
    "keeps it in (Xvfb -fbdir).\n"
    "\n"
    "  --changes N   wait until N looks in all have found another picture (0)\n"
    "  --still MS    then wait until the picture has been the same for so long (0)\n"
    "  --limit S     give up after so many seconds (60)\n"
    "  --save FILE   then save the picture as a PNG\n"
    "\n"
    "Exit status: 0 it happened, 1 given up or failed, 2 wrong options\n";

constexpr milliseconds kLook{4};  // frames of a 50 Hz needle lie 20 ms apart

struct Options {
  std::string screen;
  int changes = 0;
  milliseconds still{0};
  seconds limit{60};
  std::string save;
};

bool readNumber(const std::string& text, int& number) {
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  return result.ec == std::errc() && result.ptr == end && number >= 0;
}

bool takeOption(const std::string& name, const std::string& value, Options& options) {
  int number = 0;
  if (name == "--save") {
    options.save = value;
    return !value.empty();
  }
  if (!readNumber(value, number)) return false;
  if (name == "--changes") {
    options.changes = number;
  } else if (name == "--still") {
    options.still = milliseconds(number);
  } else if (name == "--limit") {
    options.limit = seconds(number);
  } else {
    return false;
  }
  return true;
}

bool readOptions(const std::vector<std::string>& arguments, Options& options) {
  if (arguments.empty() || arguments.size() % 2 == 0) return false;
  options.screen = arguments[0];
  for (std::size_t i = 1; i < arguments.size(); i += 2) {
    if (!takeOption(arguments[i], arguments[i + 1], options)) return false;
  }
  return true;
}

/// False if it did not happen within the limit.
bool waitFor(const Options& options, const qv3::ScreenFile& screen) {
  const auto live = screen.picture();
  std::vector<std::uint8_t> seen(live.begin(), live.end());
  const Clock::time_point began = Clock::now();
  Clock::time_point changed = began;
  int changes = 0;
  while (changes < options.changes || Clock::now() - changed < options.still) {
    if (Clock::now() - began > options.limit) return false;
    std::this_thread::sleep_for(kLook);
    if (std::equal(live.begin(), live.end(), seen.begin())) continue;
    seen.assign(live.begin(), live.end());
    changed = Clock::now();
    ++changes;
  }
  return true;
}

bool save(const qv3::ScreenFile& screen, const std::string& path) {
  const qv3::ScreenLayout& layout = screen.layout();
  const QImage picture(screen.picture().data(), layout.width, layout.height,
                       static_cast<qsizetype>(layout.stride), QImage::Format_RGB32);
  return picture.save(QString::fromStdString(path), "PNG");
}

int fail(const std::string& text) {
  std::cerr << "screen-shot: " << text << '\n';
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + count);
  if (words == std::vector<std::string>{"--help"}) {
    std::cout << kHelp;
    return 0;
  }
  Options options;
  if (!readOptions(words, options)) {
    std::cerr << kHelp;
    return 2;
  }
  std::string error;
  const auto screen = qv3::ScreenFile::open(options.screen, error);
  if (!screen) return fail(error);
  if (!waitFor(options, *screen)) return fail("it did not happen in time");
  if (!options.save.empty() && !save(*screen, options.save)) {
    return fail("cannot save " + options.save);
  }
  return 0;
}
