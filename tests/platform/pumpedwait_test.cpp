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
  timespec before{};
  timespec after{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
  EXPECT_TRUE(wait.wait(0.3));
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
  const double used = static_cast<double>(after.tv_sec - before.tv_sec) +
                      static_cast<double>(after.tv_nsec - before.tv_nsec) * 1e-9;
  EXPECT_LT(used, 0.015);
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
