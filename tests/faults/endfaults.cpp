#include <gtest/gtest.h>
#include <poll.h>

#include <QDir>
#include <QFile>
#include <csignal>
#include <random>
#include <string>

#include "tests/faults/fault.h"

namespace qv3::test {
namespace {

using std::to_string;

void killProgram(Bench& bench) {
  bench.program().signal(SIGKILL);
}

void terminate(Bench& bench) {
  bench.program().signal(SIGTERM);
}

Faults killsAtRandomMoments(int count) {
  std::mt19937 random{std::random_device{}()};
  Faults faults;
  for (int n = 0; n < count; ++n) {
    const int moment = static_cast<int>(random() % 1500);
    const Sound sound = n % 2 == 0 ? Sound::Off : Sound::Shared;
    faults.push_back({"kill -9 after " + to_string(moment) + " ms, " + to_string(n),
                      kAutoName,
                      sound,
                      Under::Recording,
                      [=](Bench& bench) {
                        poll(nullptr, 0, moment);
                        const int recorded = bench.program().look().recorded;
                        killProgram(bench);
                        ASSERT_NO_FATAL_FAILURE(bench.recover());
                        bench.expectSaved(recorded - 1);
                        if (sound != Sound::Off) bench.expectHeardToTheEnd();
                      },
                      {},
                      {},
                      Kept::Checked});
  }
  return faults;
}

Faults kills() {
  return {
      {"kill -9 in the lead-in",
       kAutoName,
       Sound::Shared,
       Under::LeadIn,
       killProgram,
       {},
       {},
       Kept::Nothing},
      {"kill -9 while stopping",
       kAutoName,
       Sound::Shared,
       Under::Recording,
       [](Bench& bench) {
         bench.program().tell("click cmdStop");
         killProgram(bench);
       },
       {},
       {},
       Kept::NextStart},
      {"kill -9 with a take in hand",
       kAutoName,
       Sound::Shared,
       Under::Taken,
       killProgram,
       {},
       {},
       Kept::NextStart},
      {"kill -9 while playing",
       kAutoName,
       Sound::Shared,
       Under::Playing,
       killProgram,
       {},
       {},
       Kept::NextStart},
      {"kill -9 while saving",
       kAutoName,
       Sound::Off,
       Under::Taken,
       [](Bench& bench) {
         bench.program().tell("click cmdSave");
         killProgram(bench);
         // Either it was saved, or it is offered; halves are in neither place.
         bench.startWithoutMeter();
         ASSERT_TRUE(bench.program().sees([](const Seen& seen) { return seen.paints > 0; }));
         if (bench.saved().isEmpty()) bench.recover();
         bench.expectSaved(60);
       },
       {},
       {},
       Kept::Checked},
      {"a journal that cannot be read",
       kAutoName,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         killProgram(bench);
         const QString journal = bench.recovery() + '/' + Bench::names(bench.recovery()).first();
         QFile file(journal);
         ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(3) && file.putChar('?'));
         file.close();
         bench.startWithoutMeter();
         ASSERT_TRUE(
             bench.program().sees([](const Seen& seen) { return seen.dialog == "msgUnreadable"; }));
         EXPECT_TRUE(bench.program().look().text.contains(journal));
         bench.program().tell("answer OK");
         EXPECT_EQ(bench.program().look().dialog, "");
         EXPECT_TRUE(QFile::exists(journal));
       },
       {},
       {},
       Kept::Checked},
  };
}

Faults terminations() {
  return {
      {"SIGTERM in the lead-in",
       kAutoSave,
       Sound::Shared,
       Under::LeadIn,
       [](Bench& bench) {
         terminate(bench);
         EXPECT_TRUE(bench.program().endsWell());
       },
       {},
       {},
       Kept::Nothing},
      {"SIGTERM while recording",
       kManual,
       Sound::Shared,
       Under::Recording,
       terminate,
       {},
       {},
       Kept::BySelf},
      {"SIGTERM while recording, saved by itself",
       kAutoSave,
       Sound::Off,
       Under::Recording,
       terminate,
       {},
       {},
       Kept::BySelf},
      {"SIGTERM while playing",
       kAutoName,
       Sound::Shared,
       Under::Playing,
       terminate,
       {},
       {},
       Kept::BySelf},
      {"SIGTERM while saving",
       kAutoName,
       Sound::Shared,
       Under::Taken,
       [](Bench& bench) {
         bench.program().tell("click cmdSave");
         terminate(bench);
       },
       {},
       {},
       Kept::BySelf},
      {"SIGTERM with a question open",
       kAutoName,
       Sound::Off,
       Under::Taken,
       [](Bench& bench) {
         bench.program().tell("close");
         ASSERT_TRUE(
             bench.program().sees([](const Seen& seen) { return seen.dialog == "msgExit"; }));
         terminate(bench);
       },
       {},
       {},
       Kept::BySelf},
      {"SIGTERM with a question open while recording",
       kAutoName,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         bench.program().tell("close");
         ASSERT_TRUE(
             bench.program().sees([](const Seen& seen) { return seen.dialog == "msgExit"; }));
         terminate(bench);
       },
       {},
       {},
       Kept::BySelf},
      {"SIGTERM with the save dialog open",
       kManual,
       Sound::Off,
       Under::Taken,
       [](Bench& bench) {
         bench.program().tell("click cmdSave");
         terminate(bench);
       },
       {},
       {},
       Kept::BySelf},
      {"SIGTERM, save folder removed",
       kAutoSave,
       Sound::Off,
       Under::Recording,
       [](Bench& bench) {
         EXPECT_TRUE(QDir(bench.saves()).removeRecursively());
         terminate(bench);
       },
       {},
       {},
       Kept::BySelf},
      {"SIGTERM, the disk full",
       kAutoName,
       Sound::Off,
       Under::Taken,
       [](Bench& bench) {
         bench.program().limitFiles(100);
         terminate(bench);
         EXPECT_TRUE(bench.program().endsWell());
       },
       {},
       {},
       Kept::NextStart},
      {"SIGTERM while starting",
       kAutoName,
       Sound::Off,
       Under::Nothing,
       [](Bench& bench) {
         const auto other = bench.another(bench.path("other"), bench.path("nowhere"));
         other->look();
         other->signal(SIGTERM);
         EXPECT_TRUE(other->endsWell());
       },
       {},
       Operation::None,
       Kept::Checked},
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
