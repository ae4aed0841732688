#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <string>

#include "tests/faults/fault.h"

namespace qv3::test {
namespace {

using enum Kept;
using enum Sound;
using enum Under;

using std::to_string;

constexpr char kUnsafe[] = "The recording cannot be kept safe from a crash: ";

Told told(const char* box, const std::string& text, int milliseconds = kSoonMs) {
  return {box, text, milliseconds};
}

/// The disk is full so many bytes on from what the journal, or the sound, takes now.
Strike fillDisk(const char* file, std::uint64_t room) {
  return [=](Bench& bench) {
    bench.program().limitFiles(bench.sizeIn(bench.recovery(), file) + room);
  };
}

Faults fullDiskWhileRecording(bool deep) {
  Faults faults;
  std::vector<std::uint64_t> rooms = {0, 1, 19, 20};
  if (deep) rooms = {0, 1, 2, 9, 10, 11, 18, 19, 20, 21, 39, 40, 41, 200, 999};
  for (const std::uint64_t room : rooms) {
    const Strike strike =
        each({fillDisk("*.journal", room), opens("msgJournal", kSoonMs), killProgram});
    faults.push_back({"disk full " + to_string(room) + " bytes on, killed then", kAutoName, Off,
                      Recording, strike, NextStart});
  }
  const Strike fromTheBegin = each({limitFiles(0), tell("click cmdRecord")});
  const std::string tooLarge = std::string(kUnsafe) + "File too large";
  const Faults others = {
      {"disk full, recording goes on", kAutoName, Off, Recording, fillDisk("*.journal", 7), InHand,
       kGoesOn, told("msgJournal", tooLarge)},
      {"disk full before the first byte", kAutoName, Off, Live, fromTheBegin, InHand, kGoesOn,
       told("msgJournal", tooLarge, 2 * kSoonMs)},
      {"disk full for the sound", kManual, Shared, Recording, fillDisk("*.wav", 5001), InHand,
       kIdle, told("msgNoSound", "The sound cannot be recorded: File too large")},
      {"disk full before the first byte of sound", kManual, Shared, Live, fromTheBegin, Checked,
       std::nullopt, told("msgNoSound", "The sound cannot be recorded: ")},
  };
  faults.insert(faults.end(), others.begin(), others.end());
  return faults;
}

Faults smallDisks() {
  const Strike pressRecord = each({tell("room 1000000"), tell("click cmdRecord")});
  const Strike record = each({tell("room 1000000"), [](Bench& bench) { bench.record(); }});
  return {
      {"disk of 1 MB, with sound", kManual, Shared, Live, pressRecord, Gone, kIdle,
       told("msgDisk", "The disk is full: there is room for less than two minutes")},
      {"disk of 1 MB, without sound", kManual, Off, Live, record, InHand, kGoesOn,
       told("msgDisk", "The disk has room for 0:08:", 6000)},
      {"disk gets full while recording", kManual, Off, Recording, tell("room 200000"), InHand,
       kIdle, told("msgDisk", "The disk is full", 7000)},
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
    ASSERT_TRUE(program.opens("msgNotSavedReason", kSoonMs)) << room;
    EXPECT_EQ(program.look().text, "The recording could not be saved: File too large");
    EXPECT_TRUE(program.look().unsaved);
    EXPECT_EQ(Bench::names(bench.saves()) + Bench::names(bench.elsewhere()), QStringList());
    ASSERT_NO_FATAL_FAILURE(bench.clearBoxes());
  }
}

/// As a folder that others may look at and nobody may write to.
void makeReadOnly(const QString& folder) {
  ASSERT_TRUE(QDir().mkpath(folder));
  ASSERT_TRUE(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
}

void removeSettingsFolder(Bench& bench) {
  bench.program().tell("click cmdSave");
  ASSERT_TRUE(bench.program().sees([](const Seen& seen) { return !seen.unsaved; }));
  ASSERT_TRUE(QDir(bench.home()).removeRecursively());
}

Faults failingSaves(bool deep) {
  const Strike saveData = [=](Bench& bench) {
    saveToFullDisks(bench, "*.journal", 200, deep ? 20 : 400);
  };
  const Strike saveSound = [=](Bench& bench) {
    saveToFullDisks(bench, "*.wav", 44200, deep ? 1001 : 30011);
  };
  const Strike folderGone = each({removeSaveFolder, tell("click cmdStop")});
  const Strike preparedGone = each({removeSaveFolder, tell("click cmdSave")});
  const Strike readOnly =
      each({[](Bench& bench) { makeReadOnly(bench.saves()); }, tell("click cmdStop")});
  return {
      {"save to a full disk", kAutoName, Off, Taken, saveData, InHand, kIdle},
      {"save sound to a full disk", kManual, Shared, Taken, saveSound, InHand, kIdle},
      {"save folder removed", kAutoSave, Shared, Recording, folderGone, InHand, std::nullopt,
       told("msgNotSavedReason", "does not exist", 2 * kSoonMs)},
      {"save folder removed, the name prepared", kAutoName, Off, Taken, preparedGone, InHand,
       std::nullopt, told("msgNotSavedReason", "does not exist")},
      {"save folder read-only", kAutoSave, Off, Recording, readOnly, InHand, std::nullopt,
       told("msgNotSavedReason", "The recording could not be saved: Permission denied",
            2 * kSoonMs)},
  };
}

Faults failingFolders() {
  const Strike readOnly =
      each({[](Bench& bench) { makeReadOnly(bench.recovery()); }, tell("click cmdRecord")});
  const Strike recoveryGone = [](Bench& bench) {
    ASSERT_TRUE(QDir(bench.recovery()).removeRecursively());
  };
  const Strike settingsGone = each({removeSettingsFolder, tell("close"),
                                    opens("msgConfigNotSaved", kSoonMs), tell("answer OK")});
  return {
      {"recovery folder read-only", kAutoName, Off, Live, readOnly, InHand, kGoesOn,
       told("msgJournal", "Permission denied", 2 * kSoonMs)},
      {"recovery folder removed", kAutoName, Off, Recording, recoveryGone, InHand, kGoesOn,
       told("msgJournal", kUnsafe)},
      {"settings folder removed", kAutoName, Off, Taken, settingsGone, BySelf},
  };
}

}  // namespace

Faults diskFaults(bool deep) {
  Faults all = fullDiskWhileRecording(deep);
  for (const Faults& part : {smallDisks(), failingSaves(deep), failingFolders()}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

}  // namespace qv3::test
