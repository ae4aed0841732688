#include "link/tickwait.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qv3 {
namespace {

struct Row {
  std::string name;
  double start;
  double seconds;
  std::vector<double> running;  // times told at which it goes on
  double over;                  // the time told at which it ends
};

TEST(TickWait, EndsWhenItsTimeHasCome) {
  const Row rows[] = {
      {"ten ticks by day", 1000, 0.54, {1000, 1000.3, 1000.539}, 1000.54},
      {"the end is skipped", 1000, 0.54, {1000.1}, 1003},
      {"nothing to wait for", 1000, 0, {}, 1000},
      {"across midnight", 86399.8, 0.54, {86399.9, 86399.999, 0, 0.2, 0.33}, 0.35},
      {"midnight is the end", 86399.5, 0.5, {86399.99}, 0.01},
      {"first told after midnight", 86399.9, 1, {0.5, 0.8}, 0.95},
      {"the clock is set back by an hour", 40000, 0.54, {40000.2}, 36400},
      {"the clock is set forward", 40000, 0.54, {40000.2}, 43600},
  };
  for (const Row& row : rows) {
    TickWait wait(row.start, row.seconds);
    for (const double time : row.running) EXPECT_FALSE(wait.over(time)) << row.name << " " << time;
    EXPECT_TRUE(wait.over(row.over)) << row.name;
    EXPECT_EQ(wait.remaining(), 0) << row.name;
  }
}

TEST(TickWait, TellsHowLongItStillTakes) {
  TickWait wait(86399.5, 1);
  EXPECT_NEAR(wait.remaining(), 1, 1e-9);
  EXPECT_FALSE(wait.over(86399.75));
  EXPECT_NEAR(wait.remaining(), 0.75, 1e-9);
  EXPECT_FALSE(wait.over(0.25));
  EXPECT_NEAR(wait.remaining(), 0.25, 1e-9);
}

}  // namespace
}  // namespace qv3
