#include "platform/pumpedwait.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/clock.h"
#include "tests/platform/eventloop.h"

namespace qv3 {
namespace {

/// On a clock that every tick of a timer moves on by 10 ms, and one that passes midnight.
TEST(PumpedWait, TakesItsTimeWhileTimersRunInside) {
  for (const double start : {43200.0, 86399.9}) {
    int ticks = 0;
    QTimer timer;
    timer.callOnTimeout([&] { ++ticks; });
    timer.start(1);
    PumpedWait wait([&] { return std::fmod(start + ticks * 0.01, 86400.0); });
    EXPECT_TRUE(wait.TDelay(4));
    EXPECT_EQ(ticks, 22) << start;
    EXPECT_TRUE(wait.wait(0.095));
    EXPECT_EQ(ticks, 32) << start;
  }
}

TEST(PumpedWait, SleepsMeanwhile) {
  PumpedWait wait(timeOfDay);
  QTimer::singleShot(0, [] {});
  const auto start = steadyTime();
  EXPECT_LT(test::turnsDuring([&] { EXPECT_TRUE(wait.wait(0.3)); }), 100);
  EXPECT_GE(steadyTime() - start, std::chrono::milliseconds(298));
}

TEST(PumpedWait, IsGivenUpAtOnce) {
  PumpedWait wait(timeOfDay);
  QTimer::singleShot(10, [&] { wait.giveUp(); });
  EXPECT_FALSE(wait.wait(3600));
  EXPECT_TRUE(wait.TDelay(1)) << "the next one is another";
}

}  // namespace
}  // namespace qv3
