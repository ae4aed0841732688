#include "recording/diskwatch.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

constexpr std::uint64_t kSilent = 1000;
constexpr std::uint64_t kSounding = 45100;

TEST(DiskWatch, SecondsThatStillFit) {
  using Room = std::optional<DiskRoom>;
  struct Row {
    Room state;
    Room save;
    std::uint64_t taken;
    bool withSound;
    std::optional<std::int64_t> seconds;
  };
  const std::vector<Row> rows = {
      {std::nullopt, std::nullopt, 0, true, std::nullopt},
      {DiskRoom{100 * kSilent, 1}, std::nullopt, 5, false, 100},
      {DiskRoom{100 * kSounding, 1}, std::nullopt, 0, true, 100},
      {std::nullopt, DiskRoom{100 * kSilent, 1}, 30 * kSilent, false, 70},
      {std::nullopt, DiskRoom{100 * kSilent, 1}, 130 * kSilent, false, 0},
      {DiskRoom{100 * kSilent, 1}, DiskRoom{300 * kSilent, 2}, 10, false, 100},
      {DiskRoom{300 * kSilent, 1}, DiskRoom{100 * kSilent, 2}, 0, false, 100},
      {DiskRoom{100 * kSilent, 1}, DiskRoom{100 * kSilent, 1}, 0, false, 50},
      {DiskRoom{100 * kSilent, 1}, DiskRoom{100 * kSilent, 1}, 60 * kSilent, false, 20},
      {DiskRoom{~std::uint64_t{0}, 1}, std::nullopt, 0, false, 18446744073709551},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(recordingSecondsLeft(row.state, row.save, row.taken, row.withSound), row.seconds);
  }
}

TEST(DiskWatch, AnHourIsToldOnceAndTwoMinutesEndIt) {
  using Verdict = DiskWatch::Verdict;
  DiskWatch watch;
  EXPECT_EQ(watch.look(std::nullopt), Verdict::Enough);
  EXPECT_EQ(watch.look(3601), Verdict::Enough);
  EXPECT_EQ(watch.look(3600), Verdict::Tell);
  EXPECT_EQ(watch.look(3000), Verdict::Enough);
  EXPECT_EQ(watch.look(120), Verdict::Enough);
  EXPECT_EQ(watch.look(119), Verdict::Full);
  EXPECT_EQ(watch.look(119), Verdict::Full);
  EXPECT_EQ(diskMessage(Verdict::Tell, 3000), "The disk has room for 0:50:00 of recording.");
}

}  // namespace
}  // namespace qv3
