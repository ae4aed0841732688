#include <gtest/gtest.h>

#include <QThread>
#include <atomic>
#include <memory>

#include "tests/faults/fault.h"

namespace qv3::test {
namespace {

/// So many programs at once: they mostly wait.
constexpr int kAtOnce = 10;

void reach(Bench& bench, Under under) {
  if (under == Under::Live) return;
  if (under == Under::LeadIn) {
    ASSERT_TRUE(bench.program().tell("click cmdRecord").done);
    ASSERT_EQ(bench.program().look().operation, Operation::LeadIn);
    return;
  }
  ASSERT_NO_FATAL_FAILURE(bench.record());
  if (under == Under::Recording) return;
  ASSERT_NO_FATAL_FAILURE(bench.stop());
  if (under == Under::Playing) bench.play();
}

void expectTold(DrivenProgram& program, const Told& told) {
  if (told.box.empty()) return;
  Seen last;
  const bool seen = program.sees(
      [&](const Seen& now) {
        last = now;
        return now.dialog.toStdString() == told.box;
      },
      told.milliseconds);
  EXPECT_TRUE(seen) << "instead of " << told.box << " \"" << last.dialog.toStdString() << '"';
  EXPECT_NE(last.text.toStdString().find(told.text), std::string::npos) << last.text.toStdString();
}

/// The live view goes on: 50 readings a second come.
void expectNeedleMoves(DrivenProgram& program) {
  const int before = program.look().paints;
  EXPECT_TRUE(program.sees([&](const Seen& seen) { return seen.paints > before + 20; }));
}

void expectKept(Bench& bench, const Fault& fault, int recorded) {
  switch (fault.kept) {
    case Kept::InHand:
      bench.program().limitFiles(std::nullopt);
      ASSERT_NO_FATAL_FAILURE(bench.clearBoxes());
      ASSERT_NO_FATAL_FAILURE(bench.stop());
      ASSERT_NO_FATAL_FAILURE(bench.clearBoxes());
      ASSERT_NO_FATAL_FAILURE(bench.saveElsewhere());
      break;
    case Kept::NextStart:
      ASSERT_NO_FATAL_FAILURE(bench.recover());
      break;
    case Kept::BySelf:
      EXPECT_TRUE(bench.program().endsWell());
      break;
    case Kept::Gone:
      bench.expectNothingLeft();
      EXPECT_EQ(bench.saved(), QStringList());
      return;
    case Kept::Checked:
      return;
  }
  bench.expectSaved(recorded - 1);
}

void meet(const Fault& fault, PulseServer& shared) {
  SCOPED_TRACE(fault.name);
  std::unique_ptr<PulseServer> own;
  if (fault.sound == Sound::Own) {
    own = std::make_unique<PulseServer>();
    ASSERT_TRUE(own->start());
  }
  Bench bench(fault.settings, fault.sound, fault.sound == Sound::Shared ? &shared : own.get());
  ASSERT_NO_FATAL_FAILURE(bench.startLive());
  ASSERT_NO_FATAL_FAILURE(reach(bench, fault.under));
  const int recorded = bench.program().look().recorded;
  ASSERT_NO_FATAL_FAILURE(fault.strike(bench));
  expectTold(bench.program(), fault.told);
  if (fault.then) {
    EXPECT_TRUE(bench.program().reaches(*fault.then));
    expectNeedleMoves(bench.program());
  }
  expectKept(bench, fault, recorded);
}

Faults faultTable(bool deep) {
  Faults all;
  for (const Faults& part : {endFaults(deep), worldFaults(), diskFaults(deep)}) {
    all.insert(all.end(), part.begin(), part.end());
  }
  return all;
}

bool wanted(const Fault& fault) {
  const std::string part = qEnvironmentVariable("QV3_FAULT").toStdString();
  return fault.name.find(part) != std::string::npos;
}

/// QV3_DEEP=1 takes longer and tries more; QV3_FAULT=PART only the faults with this in their name.
TEST(Faults, NothingRecordedIsLost) {
  Faults faults = faultTable(qEnvironmentVariableIsSet("QV3_DEEP"));
  std::erase_if(faults, [](const Fault& fault) { return !wanted(fault); });
  ASSERT_FALSE(faults.empty());
  PulseServer room;
  ASSERT_TRUE(room.start());
  const auto noise = room.play("/dev/urandom");
  ASSERT_TRUE(noise);

  std::atomic<std::size_t> next = 0;
  const auto work = [&] {
    for (std::size_t n = next++; n < faults.size(); n = next++) meet(faults[n], room);
  };
  std::vector<std::unique_ptr<QThread>> workers;
  for (int n = 0; n < kAtOnce; ++n) {
    workers.emplace_back(QThread::create(work))->start();
  }
  for (const auto& worker : workers) worker->wait();
  end(*noise);
}

}  // namespace
}  // namespace qv3::test
