#include <gtest/gtest.h>
#include <poll.h>

#include <QFile>
#include <csignal>
#include <random>
#include <string>

#include "tests/faults/fault.h"

namespace qv3::test {
namespace {

using enum Kept;
using enum Sound;
using enum Under;

using std::to_string;

void terminate(Bench& bench) {
  bench.program().signal(SIGTERM);
}

void ends(Bench& bench) {
  EXPECT_TRUE(bench.program().endsWell());
}

Faults killsAtRandomMoments(int count) {
  std::mt19937 random{std::random_device{}()};
  Faults faults;
  for (int n = 0; n < count; ++n) {
    const int moment = static_cast<int>(random() % 1500);
    const Sound sound = n % 2 == 0 ? Off : Shared;
    const std::string name = "kill -9 after " + to_string(moment) + " ms, " + to_string(n);
    const Strike strike = [=](Bench& bench) {
      poll(nullptr, 0, moment);
      const int recorded = bench.program().look().recorded;
      killProgram(bench);
      ASSERT_NO_FATAL_FAILURE(bench.recover());
      bench.expectSaved(recorded - 1);
      if (sound != Off) bench.expectHeardToTheEnd();
    };
    faults.push_back({name, kAutoName, sound, Recording, strike, Checked});
  }
  return faults;
}

/// Either it was saved, or it is offered; halves are in neither place.
void killWhileSaving(Bench& bench) {
  bench.program().tell("click cmdSave");
  killProgram(bench);
  bench.startWithoutMeter();
  ASSERT_TRUE(bench.program().sees([](const Seen& seen) { return seen.paints > 0; }));
  if (bench.saved().isEmpty()) bench.recover();
  bench.expectSaved(60);
}

void damageJournal(Bench& bench) {
  killProgram(bench);
  const QString journal = bench.recovery() + '/' + Bench::names(bench.recovery()).first();
  QFile file(journal);
  ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(3) && file.putChar('?'));
  file.close();
  bench.startWithoutMeter();
  ASSERT_TRUE(bench.program().opens("msgUnreadable"));
  EXPECT_TRUE(bench.program().look().text.contains(journal));
  bench.program().tell("answer OK");
  EXPECT_EQ(bench.program().look().dialog, "");
  EXPECT_TRUE(QFile::exists(journal));
}

Faults kills() {
  const Strike whileStopping = each({tell("click cmdStop"), killProgram});
  return {
      {"kill -9 in the lead-in", kAutoName, Shared, LeadIn, killProgram, Gone},
      {"kill -9 while stopping", kAutoName, Shared, Recording, whileStopping, NextStart},
      {"kill -9 with a take in hand", kAutoName, Shared, Taken, killProgram, NextStart},
      {"kill -9 while playing", kAutoName, Shared, Playing, killProgram, NextStart},
      {"kill -9 while saving", kAutoName, Off, Taken, killWhileSaving, Checked},
      {"a journal that cannot be read", kAutoName, Off, Recording, damageJournal, Checked},
  };
}

void terminateAStart(Bench& bench) {
  const auto other = bench.another(bench.path("other"), bench.path("nowhere"));
  other->look();
  other->signal(SIGTERM);
  EXPECT_TRUE(other->endsWell());
}

Faults terminations() {
  const Strike atTheQuestion = each({tell("close"), opens("msgExit"), terminate});
  const Strike atTheDialog = each({tell("click cmdSave"), opens("dlgSaveRecordingAs"), terminate});
  const Strike whileSaving = each({tell("click cmdSave"), terminate});
  const Strike withoutFolder = each({removeSaveFolder, terminate});
  const Strike onAFullDisk = each({limitFiles(100), terminate, ends});
  return {
      {"SIGTERM in the lead-in", kAutoSave, Shared, LeadIn, each({terminate, ends}), Gone},
      {"SIGTERM while recording", kManual, Shared, Recording, terminate, BySelf},
      {"SIGTERM while recording, saved by itself", kAutoSave, Off, Recording, terminate, BySelf},
      {"SIGTERM while playing", kAutoName, Shared, Playing, terminate, BySelf},
      {"SIGTERM while saving", kAutoName, Shared, Taken, whileSaving, BySelf},
      {"SIGTERM with a question open", kAutoName, Off, Taken, atTheQuestion, BySelf},
      {"SIGTERM with a question open while recording", kAutoName, Off, Recording, atTheQuestion,
       BySelf},
      {"SIGTERM with the save dialog open", kManual, Off, Taken, atTheDialog, BySelf},
      {"SIGTERM, save folder removed", kAutoSave, Off, Recording, withoutFolder, BySelf},
      {"SIGTERM, the disk full", kAutoName, Off, Taken, onAFullDisk, NextStart},
      {"SIGTERM while starting", kAutoName, Off, Live, terminateAStart, Checked, kIdle},
  };
}

}  // namespace

Faults endFaults(bool deep) {
  Faults all = killsAtRandomMoments(deep ? 100 : 10);
  for (const Faults& part : {kills(), terminations()})
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

}  // namespace qv3::test
