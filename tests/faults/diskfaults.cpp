#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <csignal>
#include <string>

#include "tests/faults/fault.h"

namespace qv3::test {
namespace {

using std::to_string;

void killProgram(Bench& bench) {
  bench.program().signal(SIGKILL);
}

/// As a folder that others may look at and nobody may write to.
void makeReadOnly(const QString& folder) {
  ASSERT_TRUE(QDir().mkpath(folder));
  ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
}

void remove(const QString& folder) {
  ASSERT_TRUE(QDir(folder).removeRecursively());
}

/// The disk is full so many bytes on from what the journal, or the sound, takes now.
void fillDisk(Bench& bench, const char* file, std::uint64_t room) {
  bench.program().limitFiles(bench.sizeIn(bench.recovery(), file) + room);
}

Faults fullDiskWhileRecording(bool deep) {
  Faults faults;
  const std::string message = "The recording cannot be kept safe from a crash: File too large";
  std::vector<std::uint64_t> rooms = {0, 1, 19, 20};
  if (deep) rooms = {0, 1, 2, 9, 10, 11, 18, 19, 20, 21, 39, 40, 41, 200, 999};
  for (const std::uint64_t room : rooms) {
    faults.push_back({"disk full " + to_string(room) + " bytes on, killed then",
                      kAutoName,
                      Sound::Off,
                      Under::Recording,
                      [room](Bench& bench) {
                        fillDisk(bench, "*.journal", room);
                        ASSERT_TRUE(bench.program().sees(
                            [](const Seen& seen) { return seen.dialog == "msgJournal"; }, 2000));
                        killProgram(bench);
                      },
                      {},
                      {},
                      Kept::NextStart});
  }
  faults.push_back({"disk full, recording goes on",
                    kAutoName,
                    Sound::Off,
                    Under::Recording,
                    [](Bench& bench) { fillDisk(bench, "*.journal", 7); },
                    {"msgJournal", message},
                    Operation::Recording,
                    Kept::InHand});
  faults.push_back({"disk full before the first byte",
                    kAutoName,
                    Sound::Off,
                    Under::Nothing,
                    [](Bench& bench) {
                      bench.program().limitFiles(0);
                      bench.program().tell("click cmdRecord");
                    },
                    {"msgJournal", message, 4000},
                    Operation::Recording,
                    Kept::InHand});
  faults.push_back({"disk full for the sound",
                    kManual,
                    Sound::Shared,
                    Under::Recording,
                    [](Bench& bench) { fillDisk(bench, "*.wav", 5001); },
                    {"msgNoSound", "The sound cannot be recorded: File too large"},
                    Operation::None,
                    Kept::InHand});
  faults.push_back({"disk full before the first byte of sound",
                    kManual,
                    Sound::Shared,
                    Under::Nothing,
                    [](Bench& bench) {
                      bench.program().limitFiles(0);
                      bench.program().tell("click cmdRecord");
                    },
                    {"msgNoSound", "The sound cannot be recorded: "},
                    {},
                    Kept::Checked});
  return faults;
}

Faults smallDisks() {
  return {
      {"disk of 1 MB, with sound",
       kManual,
       Sound::Shared,
       Under::Nothing,
       [](Bench& bench) {
         bench.program().tell("room 1000000");
         bench.program().tell("click cmdRecord");
       },
       {"msgDisk", "The disk is full: there is room for less than two minutes"},
       Operation::None,
       Kept::Nothing},
      {"disk of 1 MB, without sound",
       kManual,
       Sound::Off,
       Under::Nothing,
       [](Bench& bench) {
         bench.program().tell("room 1000000");
         bench.record();
       },
       {"msgDisk", "The disk has room for 0:08:", 6000},
       Operation::Recording,
       Kept::InHand},
      {"disk gets full while recording",
       kManual,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) { bench.program().tell("room 200000"); },
       {"msgDisk", "The disk is full", 7000},
       Operation::None,
       Kept::InHand},
  };
}

/// Saves to a disk that is full at one byte after another of the file, which is shorter by `more`
/// than the one in the recovery folder.
void saveToFullDisks(Bench& bench, const char* file, std::uint64_t more, std::uint64_t step) {
  DrivenProgram& program = bench.program();
  const std::uint64_t size = bench.sizeIn(bench.recovery(), file) - more;
  for (std::uint64_t room = 0; room < size; room += room < 40 ? 13 : step) {
    program.limitFiles(room);
    program.tell("click cmdSave");
    if (program.look().dialog == "dlgSaveRecordingAs") {
      program.tell("choose " + bench.elsewhere() + "/Take");
    }
    ASSERT_TRUE(
        program.sees([](const Seen& seen) { return seen.dialog == "msgNotSavedReason"; }, 2000))
        << room;
    EXPECT_EQ(program.look().text, "The recording could not be saved: File too large");
    EXPECT_TRUE(program.look().unsaved);
    EXPECT_EQ(Bench::names(bench.saves()) + Bench::names(bench.elsewhere()), QStringList());
    ASSERT_NO_FATAL_FAILURE(bench.clearBoxes());
  }
}

Faults failingSaves(bool deep) {
  const std::uint64_t step = deep ? 20 : 400;
  return {
      {"save to a full disk",
       kAutoName,
       Sound::Off,
       Under::Taken,
       [=](Bench& bench) { saveToFullDisks(bench, "*.journal", 200, step); },
       {},
       Operation::None,
       Kept::InHand},
      {"save sound to a full disk",
       kManual,
       Sound::Shared,
       Under::Taken,
       [=](Bench& bench) { saveToFullDisks(bench, "*.wav", 44200, deep ? 1001 : 30011); },
       {},
       Operation::None,
       Kept::InHand},
      {"save folder removed",
       kAutoSave,
       Sound::Shared,
       Under::Recording,
       [](Bench& bench) {
         remove(bench.saves());
         bench.program().tell("click cmdStop");
       },
       {"msgNotSavedReason", "does not exist", 4000},
       {},
       Kept::InHand},
      {"save folder removed, the name prepared",
       kAutoName,
       Sound::Off,
       Under::Taken,
       [](Bench& bench) {
         remove(bench.saves());
         bench.program().tell("click cmdSave");
       },
       {"msgNotSavedReason", "does not exist"},
       {},
       Kept::InHand},
      {"save folder read-only",
       kAutoSave,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         makeReadOnly(bench.saves());
         bench.program().tell("click cmdStop");
       },
       {"msgNotSavedReason", "The recording could not be saved: Permission denied", 4000},
       {},
       Kept::InHand},
      {"recovery folder read-only",
       kAutoName,
       Sound::Off,
       Under::Nothing,
       [](Bench& bench) {
         makeReadOnly(bench.recovery());
         bench.program().tell("click cmdRecord");
       },
       {"msgJournal", "Permission denied", 4000},
       Operation::Recording,
       Kept::InHand},
      {"recovery folder removed",
       kAutoName,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) { remove(bench.recovery()); },
       {"msgJournal", "The recording cannot be kept safe from a crash: "},
       Operation::Recording,
       Kept::InHand},
      {"settings folder removed",
       kAutoName,
       Sound::Off,
       Under::Taken,
       [](Bench& bench) {
         bench.program().tell("click cmdSave");
         ASSERT_TRUE(bench.program().sees([](const Seen& seen) { return !seen.unsaved; }));
         remove(bench.home());
         bench.program().tell("close");
         ASSERT_TRUE(bench.program().sees(
             [](const Seen& seen) { return seen.dialog == "msgConfigNotSaved"; }, 2000));
         bench.program().tell("answer OK");
       },
       {},
       {},
       Kept::BySelf},
  };
}

}  // namespace

std::vector<Fault> diskFaults(bool deep) {
  Faults all = fullDiskWhileRecording(deep);
  for (const Faults& part : {smallDisks(), failingSaves(deep)}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

}  // namespace qv3::test
