#include "platform/pumpedwait.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/clock.h"
#include "tests/platform/eventloop.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

double secondsSince(steady_clock::time_point start) {
  return std::chrono::duration<double>(steady_clock::now() - start).count();
}

TEST(PumpedWait, TakesItsTimeWhileTimersRunInside) {
  PumpedWait wait(timeOfDay);
  int ticks = 0;
  QTimer timer;
  timer.callOnTimeout([&] { ++ticks; });
  timer.start(10);
  const auto start = steady_clock::now();
  EXPECT_TRUE(wait.TDelay(4));
  EXPECT_GE(secondsSince(start), 4 * kTickSeconds - 0.002);
  EXPECT_GE(ticks, 5);
}

TEST(PumpedWait, SleepsMeanwhile) {
  PumpedWait wait(timeOfDay);
  QTimer::singleShot(0, [] {});
  EXPECT_LT(test::turnsDuring([&] { EXPECT_TRUE(wait.wait(0.3)); }), 100);
}

TEST(PumpedWait, IsGivenUpAtOnce) {
  PumpedWait wait(timeOfDay);
  QTimer::singleShot(10, [&] { wait.giveUp(); });
  EXPECT_FALSE(wait.wait(3600));
  EXPECT_TRUE(wait.TDelay(1)) << "the next one is another";
}

TEST(PumpedWait, EndsInTimeAcrossMidnight) {
  const auto start = steady_clock::now();
  PumpedWait wait([&] { return std::fmod(86399.95 + secondsSince(start), 86400.0); });
  EXPECT_TRUE(wait.wait(0.15));
  EXPECT_GE(secondsSince(start), 0.149);
}

}  // namespace
}  // namespace qv3
