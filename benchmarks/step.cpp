// bench-step play SCREEN CLAPS SOUND-PPM METER-PPM
// bench-step record CLAPS SOUND-PPM METER-PPM
//
// How far the needle, the sound and the `Time` of the records are apart, clap by clap. Every figure
// is a difference of two moments of the machine's steady clock; the clocks of the sound and of the
// meter run so many parts in a million faster than it.
//
// play: the program plays a session whose needle goes over to the other side at known records, as
// a meter of METER-PPM gives them, and whose sound claps at their `Time`. `Time` is put on the
// steady clock by the positions that the program asks the sound device for, every 4 ms. The needle
// is seen in SCREEN, a virtual display's picture, within 0.3 ms. The sound is heard by the monitor
// of a null sink, in a server whose clock is SOUND-PPM fast; it is told up to 5 ms too early, and
// the server's resampler spreads a clap over 1 ms.
//
// record: meter-sim sends known readings, and claps are fed to the server as a microphone does
// whose clock is SOUND-PPM fast; the program records, stops and saves. Of a clap and of the reading
// nearest to it the moments are known, by the log of meter-sim and the microphone's clock, and both
// are found in the files: the figure is how much later the reading is in the files, and was not in
// the world. Records are stamped by whole 20 ms from the first frame of a second on, so that it
// lies anywhere from 20 ms early to as late as a frame takes from the meter to the program.

#include <QApplication>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/screeneye.h"
#include "benchmarks/sleepers.h"
#include "tests/step/stepruns.h"

namespace {

using namespace qv3;
using namespace qv3::test;

constexpr double kMost = 20;    // ms, of 99 % of the claps
constexpr double kAtMost = 40;  // ms, of all

int fail(const std::string& text) {
  std::fprintf(stderr, "bench-step: %s\n", text.c_str());
  return 2;
}

/// A line of figures; whether they are within the limits.
bool print(const char* what, const Offsets& offsets) {
  const bool inStep = offsets.count() > 0 && offsets.lost() == 0 && offsets.reach(0.99) <= kMost &&
                      offsets.reach(1) <= kAtMost;
  std::printf("  %-18s median %+7.2f  p95 %6.2f  p99 %6.2f  max %6.2f  ms (%zu, %zu lost)%s\n",
              what, offsets.median(), offsets.reach(0.95), offsets.reach(0.99), offsets.reach(1),
              offsets.count(), offsets.lost(), inStep ? "" : "  OUT OF STEP");
  return inStep;
}

/// A row of the screen that the needle crosses near its end.
int needleRow(const DialPanel& dial) {
  return dial.mapToGlobal(QPoint(0, dial.height() / 4)).y();
}

MakeEye eyeOn(const std::string& screen) {
  return [screen](MainWindow& window) -> Eye {
    std::string error;
    std::shared_ptr<ScreenEye> eye = ScreenEye::open(screen, needleRow(window.dial()), error);
    if (!eye) throw std::runtime_error(error);
    return [eye] { return eye->seen(); };
  };
}

int play(const std::vector<std::string>& words) {
  const int soundPpm = std::stoi(words[3]);
  const int meterPpm = std::stoi(words[4]);
  const auto server = skewedServer(soundPpm);
  const Sleepers machine;
  const Played played =
      playSession(*server, {std::stoi(words[2]), soundPpm, meterPpm, eyeOn(words[1])});
  std::printf("played, sound %+d ppm (heard: %+.0f), meter %+d ppm\n", soundPpm, played.heardPpm,
              meterPpm);
  machine.print();
  const bool sound = print("sound - Time", played.soundToTime);
  const bool needle = print("needle - Time", played.needleToTime);
  return print("needle - sound", played.needleToSound) && sound && needle ? 0 : 1;
}

int record(const std::vector<std::string>& words) {
  const int soundPpm = std::stoi(words[2]);
  const int meterPpm = std::stoi(words[3]);
  const auto server = skewedServer(0);
  const Sleepers machine;
  const RecordResult result = recordSession(*server, {std::stoi(words[1]), soundPpm, meterPpm});
  std::printf("recorded, sound %+d ppm, meter %+d ppm", soundPpm, meterPpm);
  if (result.lostSound > 0) std::printf(", the server lost %.1f ms of sound", result.lostSound);
  std::printf("\n");
  machine.print();
  return print("Time - sound", result.needleToSound) ? 0 : 1;
}

}  // namespace

int main(int count, char** arguments) {
  QApplication application(count, arguments);
  QApplication::setQuitOnLastWindowClosed(false);
  const std::vector<std::string> words(arguments + 1, arguments + count);
  try {
    if (words.size() == 5 && words[0] == "play") return play(words);
    if (words.size() == 4 && words[0] == "record") return record(words);
  } catch (const std::exception& error) {
    return fail(error.what());
  }
  return fail("play SCREEN CLAPS SOUND-PPM METER-PPM, or record CLAPS SOUND-PPM METER-PPM");
}
