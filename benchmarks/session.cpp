// bench-session: what a long session costs the whole program. Each command prints a line for each
// figure, its name first.
//
//   make BASE SECONDS     writes BASE.qvd and BASE.wav
//   load HOME BASE        work  ms of processor time from the answered dialog to the drawn session
//                         longest  ms that no event was handled meanwhile
//                         read  ms of processor time of a plain read of the same file
//                         growth  of the resident memory at its most, in sizes of the file
//   open HOME BASE...     ms to open the sound of each, again and again; by its name
//   seek HOME BASE COUNT  seek  ms from a press on the position bar to the painted needle
//   play HOME BASE        plays it until it is ended

#include <QApplication>
#include <QFont>
#include <QMouseEvent>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "benchmarks/samplesession.h"
#include "benchmarks/wholeprogram.h"
#include "recording/positionbar.h"

namespace {

using namespace qv3;
using namespace qv3::bench;

double seconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void print(const char* name, double value) {
  std::printf("%s %.3f\n", name, value);
  std::fflush(stdout);
}

/// A figure of /proc/self/status, in bytes.
double memory(const std::string& name) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.starts_with(name + ':'))
      return std::strtod(line.c_str() + name.size() + 1, nullptr) * 1024;
  }
  return 0;
}

/// From here on the most is that of what follows.
void forgetMostMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

std::size_t sizeOf(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(size);
}

/// Into memory of its own, as anything that wants a file has to at least.
double plainRead(const std::string& path) {
  const double began = seconds(CLOCK_PROCESS_CPUTIME_ID);
  std::vector<char> bytes(sizeOf(path));
  std::ifstream file(path, std::ios::binary);
  file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return file.good() ? (seconds(CLOCK_PROCESS_CPUTIME_ID) - began) * 1000 : 0;
}

/// How long the event loop was kept at most, by a timer that wants to fire all the time.
class LongestTurn final : public QObject {
 public:
  LongestTurn() { m_timer = startTimer(1, Qt::PreciseTimer); }

  double longest() const { return m_longest; }

 private:
  void timerEvent(QTimerEvent*) override {
    const double now = seconds(CLOCK_MONOTONIC);
    m_longest = std::max(m_longest, (now - m_last) * 1000);
    m_last = now;
  }

  double m_last = seconds(CLOCK_MONOTONIC);
  double m_longest = 0;
  int m_timer = 0;
};

int load(const std::string& home, const std::string& base) {
  const std::string path = base + ".qvd";
  print("read", plainRead(path));
  WholeProgram whole(home);
  double before = 0;
  double began = 0;
  whole.load(path, [&] {
    forgetMostMemory();
    before = memory("VmRSS");
    began = seconds(CLOCK_PROCESS_CPUTIME_ID);
  });
  runFor(std::chrono::milliseconds(100));
  print("work", (seconds(CLOCK_PROCESS_CPUTIME_ID) - began) * 1000);
  print("growth", (memory("VmHWM") - before) / static_cast<double>(sizeOf(path)));
  std::optional<LongestTurn> turns;
  whole.load(path, [&turns] { turns.emplace(); });
  print("longest", turns->longest());
  return whole.program().instrument().allowed(Command::Play) ? 0 : 1;
}

int open(const std::string& home, const std::vector<std::string>& bases) {
  constexpr int kRounds = 200;
  SoundMachine sound(home + "/none.mp3", [] { return std::string(); });
  for (int round = 0; round < kRounds; ++round) {
    for (const std::string& base : bases) {
      const double began = seconds(CLOCK_MONOTONIC);
      const bool opened =
          sound.media().send("open \"" + base + ".wav\" type waveaudio alias WavFile").ok();
      const double took = seconds(CLOCK_MONOTONIC) - began;
      if (!opened) return 1;
      print(base.substr(base.rfind('/') + 1).c_str(), took * 1000);
      sound.media().send("close WavFile");
    }
  }
  return 0;
}

/// Hears of every picture that the dial paints.
class Painted final : public QObject {
 public:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) ++count;
    return false;
  }
  int count = 0;
};

/// One of the records from `first` on; a busy machine may let some pass by.
bool shows(const Instrument& instrument, std::size_t first) {
  constexpr std::size_t kPassed = 500;
  for (std::size_t number = first; number < first + kPassed; ++number) {
    if (instrument.state().Reading == sampleReading(std::max<std::size_t>(number, 1))) return true;
  }
  return false;
}

void pressBar(QWidget& bar, int x) {
  const QPointF place(x, bar.height() / 2.0);
  for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, place, bar.mapToGlobal(place), Qt::LeftButton,
                      type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(&bar, &event);
  }
}

int seek(const std::string& home, const std::string& base, int count) {
  WholeProgram whole(home);
  whole.load(base + ".qvd");
  const std::size_t records = sizeOf(base + ".qvd") / kRecordSize;
  QWidget& bar = whole.program().window().transport().bar();
  Painted painted;
  whole.program().window().dial().installEventFilter(&painted);
  whole.press("cmdPlay");
  runFor(std::chrono::milliseconds(1000));
  std::mt19937 random{7};
  for (int n = 0; n < count; ++n) {
    const int x = static_cast<int>(random() % static_cast<unsigned>(bar.width()));
    const int place = BarGeometry(bar.width(), bar.height()).placeAt(x);
    const std::size_t wanted =
        records * static_cast<std::size_t>(place) / static_cast<std::size_t>(BarGeometry::kWidth);
    if (wanted + kSamplesPerSecond > records) continue;
    const double began = seconds(CLOCK_MONOTONIC);
    pressBar(bar, x);
    runUntil([&] { return shows(whole.program().instrument(), wanted); });
    const int before = painted.count;
    runUntil([&] { return painted.count != before; });
    print("seek", (seconds(CLOCK_MONOTONIC) - began) * 1000);
    // At any moment between two records.
    runFor(std::chrono::milliseconds(100 + random() % 40));
  }
  return 0;
}

int play(const std::string& home, const std::string& base) {
  WholeProgram whole(home);
  whole.load(base + ".qvd");
  whole.press("cmdPlay");
  return QApplication::exec();
}

int fail() {
  std::fputs(
      "bench-session: make BASE SECONDS | load HOME BASE | open HOME BASE... | "
      "seek HOME BASE COUNT | play HOME BASE\n",
      stderr);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QFont::insertSubstitution(QStringLiteral("Aerial"), QStringLiteral("Liberation Sans"));
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.size() < 3) return fail();
  const std::string& command = words[0];
  if (command == "make") {
    return writeSampleSession(words[1], std::strtoul(words[2].c_str(), nullptr, 10)) ? 0 : 1;
  }
  if (command == "load") return load(words[1], words[2]);
  if (command == "open") return open(words[1], {words.begin() + 2, words.end()});
  if (command == "play") return play(words[1], words[2]);
  if (command == "seek" && words.size() == 4) {
    return seek(words[1], words[2], std::atoi(words[3].c_str()));
  }
  return fail();
}
