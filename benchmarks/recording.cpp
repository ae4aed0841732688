// bench-recording: what recording costs hour by hour, without waiting for the time to pass. Each
// command prints a line for each figure, its name first.
//
//   append HOURS           append  ns of processor time for a record, stamped and kept; one an hour
//   record HOURS FOLDER    sample  ns of processor time from a frame's characters to its record on
//                                  the way to the journal in FOLDER; one an hour
//                          memory  bytes by which the resident memory grew, for each record
//                          queue   records at most that waited for the disk at the end of a second

#include <unistd.h>

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <thread>

#include "benchmarks/nosound.h"
#include "instrument/session/session.h"
#include "platform/disk/diskfiles.h"
#include "platform/disk/nexttake.h"
#include "platform/disk/recoveryfolder.h"
#include "recording/recorder.h"
#include "settings/settingsrows.h"

namespace {

using namespace qv3;

constexpr int kSamplesPerSecond = 50;
constexpr int kSecondsPerHour = 3600;
constexpr double kSamplesPerHour = 1.0 * kSecondsPerHour * kSamplesPerSecond;

void print(const char* name, double value) {
  std::printf("%s %.3f\n", name, value);
}

/// Of this thread: the journal's own work is not the needle's.
double usedSeconds() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double residentBytes() {
  double size = 0;
  double resident = 0;
  std::ifstream("/proc/self/statm") >> size >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

class NoView final : public SessionView {
 public:
  void refreshTransport() override {}
  void showLoadedFile(const std::string&, const std::string&) override {}
  void showTag(const std::string&) override {}
  void showPlayTime(std::int64_t) override {}
  void showTotalTime(std::optional<std::int64_t>) override {}
  void showBar(const BarState&) override {}
  void showClock(const std::optional<SessionClock>&) override {}
  void hideClock() override {}
  void showNumberedFiles(const std::vector<std::string>&, int) override {}
  void ask(const SessionNotice&, Answer) override {}
  void tell(const SessionNotice& notice, std::function<void()>) override {
    std::fprintf(stderr, "bench-recording: %s\n", notice.text.c_str());
  }
  void chooseSaveFile(const FileChoice&, Chosen) override {}
  void chooseLoadFile(const FileChoice&, Chosen) override {}
  void openRecordingSetup() override {}
};

class NoSpool final : public SoundSpool {
 public:
  std::optional<TakeSound> recorded() const override { return std::nullopt; }
  bool settled() const override { return true; }
  std::string failure() const override { return {}; }
};

/// Counts what a journal is handed, and looks at what it has written of it.
class CountedJournal final : public JournalSink {
 public:
  CountedJournal(std::unique_ptr<JournalSink> journal, const CountedJournal*& made)
      : m_journal(std::move(journal)), m_writer(dynamic_cast<TakeJournal&>(*m_journal).writer()) {
    made = this;
  }

  void append(std::vector<std::uint8_t> bytes) override {
    m_handed += bytes.size();
    m_journal->append(std::move(bytes));
  }
  void finish() override { m_journal->finish(); }
  void remove() override { m_journal->remove(); }
  void moveToTrash() override { m_journal->moveToTrash(); }

  double waiting() const { return static_cast<double>(m_handed - m_writer->written()); }

 private:
  std::unique_ptr<JournalSink> m_journal;
  const JournalWriter* m_writer;
  std::uint64_t m_handed = 0;
};

ProgramSettings silentSettings(const std::string& folder) {
  ProgramSettings settings;
  for (const SettingRow& row : settingsRows()) setFromText(settings, row, row.defaultText);
  settings.ComPort = 1;
  settings.AudioEnable = false;
  settings.SavePath = folder;
  return settings;
}

/// A meter that records, on a clock that this moves.
class Recording {
 public:
  explicit Recording(const std::string& folder)
      : m_settings(silentSettings(folder)),
        m_recovery(folder + "recovery", m_files),
        m_nextTake(
            m_recovery, [] { return std::string("bench"); },
            [](const std::string& reason) { std::fprintf(stderr, "%s\n", reason.c_str()); }),
        m_session(world(folder)) {
    m_instrument.core().state.MeterVersion = "3A";
    m_instrument.connected(6, m_now);
    m_session.cmdRecord();
    while (m_journal == nullptr) {
      sample();
      poll();
    }
  }

  void sample() {
    m_now.steady += std::chrono::milliseconds(20);
    m_now.timeOfDay = std::fmod(m_now.timeOfDay + 0.02, 86400);
    m_instrument.advance(m_now);
    const double wave = 400 * std::sin(static_cast<double>(++m_frames) / 650);
    char frame[8];
    std::snprintf(frame, sizeof frame, "P%04X\r", 26000U + static_cast<unsigned>(500 + wave));
    m_port.charactersArrived({frame, 6});
    m_instrument.receive(m_now);
    m_session.received(m_now);
  }
  void poll() { m_session.poll(m_now); }

  double waiting() const { return m_journal->waiting(); }
  double records() const { return static_cast<double>(m_instrument.recorder().records().count()); }

 private:
  SessionWorld world(const std::string& folder) {
    return {m_instrument,
            m_media,
            m_spool,
            m_files,
            m_files,
            m_view,
            [this] { return std::make_unique<CountedJournal>(m_nextTake.newJournal(), m_journal); },
            [] { return CalendarTime{2017, 1, 5, 14, 3, 27}; },
            [this] { return m_now; },
            folder,
            {},
            [] {}};
  }

  ProgramSettings m_settings;
  NoPort m_line;
  CommPort m_port{m_line};
  NoDisplay m_display;
  bench::NoSound m_sound;
  Instrument m_instrument{m_settings, m_port, m_display, m_sound};
  Now m_now{Instant{0}, 43200};
  unsigned m_frames = 0;
  bench::NoMedia m_media;
  NoSpool m_spool;
  NoView m_view;
  DiskFiles m_files;
  RecoveryFolder m_recovery;
  NextTake m_nextTake;
  const CountedJournal* m_journal = nullptr;
  Session m_session;
};

void appendOnly(int hours) {
  Recorder recorder;
  recorder.start(false);
  recorder.startData({});
  Recorder::Sample sample;
  for (int hour = 0; hour < hours; ++hour) {
    const double began = usedSeconds();
    for (int n = 0; n < kSecondsPerHour * kSamplesPerSecond; ++n) {
      ++sample.sampleCount;
      recorder.append(sample);
    }
    print("append", (usedSeconds() - began) / kSamplesPerHour * 1e9);
  }
}

void wholeSamples(const std::string& folder, int hours) {
  Recording recording(folder);
  const double memory = residentBytes();
  const double records = recording.records();
  double queue = 0;
  for (int hour = 0; hour < hours; ++hour) {
    double used = 0;
    for (int second = 0; second < kSecondsPerHour; ++second) {
      const double began = usedSeconds();
      for (int n = 0; n < kSamplesPerSecond; ++n) recording.sample();
      recording.poll();
      used += usedSeconds() - began;
      queue = std::max(queue, recording.waiting() / kRecordSize);
      // Many thousand times faster than a meter, this would else outrun the disk.
      while (recording.waiting() > 0) std::this_thread::yield();
    }
    print("sample", used / kSamplesPerHour * 1e9);
  }
  print("memory", (residentBytes() - memory) / (recording.records() - records));
  print("queue", queue);
}

}  // namespace

int main(int count, char** arguments) {
  QCoreApplication application(count, arguments);
  if (count == 3 && std::string(arguments[1]) == "append") {
    appendOnly(std::atoi(arguments[2]));
  } else if (count == 4 && std::string(arguments[1]) == "record") {
    wholeSamples(std::string(arguments[3]) + '/', std::atoi(arguments[2]));
  } else {
    std::fputs("bench-recording: append HOURS | record HOURS FOLDER\n", stderr);
    return 2;
  }
  return 0;
}
