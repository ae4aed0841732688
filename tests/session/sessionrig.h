#pragma once

#include <list>

#include "instrument/session/session.h"
#include "recording/sessionfile.h"
#include "tests/support/fakemedia.h"
#include "tests/support/fakesession.h"
#include "tests/support/instrumentrig.h"
#include "tests/support/memoryfiles.h"

namespace qv3::test {

/// Writes down what a session shows and asks; the test answers.
class ViewLog final : public SessionView {
 public:
  void refreshTransport() override {}
  void showLoadedFile(const std::string& text, const std::string& toolTip) override {
    loadedFile = text;
    loadedTip = toolTip;
  }
  void showTag(const std::string&) override {}
  void showPlayTime(std::int64_t) override {}
  void showTotalTime(std::optional<std::int64_t> seconds) override { totalTime = seconds; }
  void showBar(const BarState& state) override { bar = state; }
  void showClock(const std::optional<SessionClock>& shown) override {
    clock = shown;
    clockHidden = false;
  }
  void hideClock() override { clockHidden = true; }
  void showNumberedFiles(const std::vector<std::string>& list, int index) override {
    numbers = list;
    current = index;
  }
  void ask(const SessionNotice& question, Answer answer) override {
    asked.push_back(question.text);
    answers.push_back(std::move(answer));
  }
  void tell(const SessionNotice& notice, std::function<void()> then) override {
    told.push_back(notice.text);
    if (then) then();
  }
  void chooseSaveFile(const FileChoice& choice, Chosen answer) override {
    dialog = choice;
    chosen = std::move(answer);
  }
  void chooseLoadFile(const FileChoice& choice, Chosen answer) override {
    chooseSaveFile(choice, std::move(answer));
  }
  void openRecordingSetup() override { ++setups; }

  /// The last question is answered.
  void reply(bool yes) {
    const Answer answer = answers.back();
    answers.pop_back();
    answer(yes);
  }

  std::string loadedFile, loadedTip;
  std::optional<std::int64_t> totalTime;
  BarState bar;
  std::optional<SessionClock> clock;
  bool clockHidden = false;
  std::vector<std::string> numbers, asked, told;
  std::vector<Answer> answers;
  FileChoice dialog;
  Chosen chosen;
  int current = -1;
  int setups = 0;
};

/// A session on an instrument with a fake device, a disk in memory and a told clock.
struct SessionRig : InstrumentRig {
  FakeMedia media;
  MemoryFiles files;
  ViewLog view;
  std::list<JournalLog> journals;
  NoSpool spool;
  NoDiskLimit disk;
  int beeps = 0;
  Session session{{instrument, media, spool, files, disk, view,
                   [this] {
                     journals.emplace_back();
                     return std::make_unique<FakeJournal>(journals.back());
                   },
                   [] { return CalendarTime{2017, 1, 5, 14, 3, 27}; }, [this] { return now; },
                   "/state/", "/data/dummy.mp3", [this] { ++beeps; }}};

  SessionRig() {
    files.folders = {"/rec", "/state", "/data"};
    files.contents["/data/dummy.mp3"] = "silence";
    settings.AudioEnable = false;
    settings.SavePath = "/rec/";
    connect();
    frames(3);
  }

  void frames(int count) {
    for (int n = 0; n < count; ++n) {
      receive("P7000\r");
      session.received(now);
      session.poll(now);
    }
  }
  void polls(int count = 50) {
    for (int n = 0; n < count; ++n) session.poll(now);
  }
  /// A recording of whole seconds in the present record mode, stopped.
  void recordSeconds(int seconds) {
    session.cmdRecord();
    frames(50 + seconds * 50);
    session.cmdStop(now);
    frames(2);
  }
  void putSession(const std::string& base, int count, bool withSound = false,
                  std::optional<SessionStart> start = SessionStart{3600, 6210}) {
    RecordBuffer records;
    for (int n = 1; n <= count; ++n) {
      SampleRecord record;
      record.Time = n * 20;
      record.PacketType = 'P';
      records.append(record);
    }
    const auto bytes = fileBytes(records, start, {});
    files.contents[base + ".qvd"] = std::string(bytes.begin(), bytes.end());
    if (withSound) files.contents[base + ".wav"] = "RIFF";
  }
};

}  // namespace qv3::test
