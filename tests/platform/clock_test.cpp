#include "platform/clock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace qv3 {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::system_clock;

/// Local time is that of `zone`.
class Zone {
 public:
  explicit Zone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  ~Zone() {
    unsetenv("TZ");
    tzset();
  }
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;
};

TEST(Clock, TellsTheLocalCalendarAndTimeOfDay) {
  // 2024-03-31, a quarter second before one o'clock UTC, when European clocks go forward.
  const system_clock::time_point moment{seconds(1'711'846'799) + milliseconds(750)};
  const struct {
    const char* zone;
    milliseconds after;
    int month, day, hour, minute, second;
    double timeOfDay;
  } rows[] = {
      {"UTC0", milliseconds(0), 3, 31, 0, 59, 59, 3599.75},
      {"CET-1CEST,M3.5.0,M10.5.0/3", milliseconds(0), 3, 31, 1, 59, 59, 7199.75},
      {"CET-1CEST,M3.5.0,M10.5.0/3", milliseconds(250), 3, 31, 3, 0, 0, 10800},
      {"NST3:30", milliseconds(0), 3, 30, 21, 29, 59, 77399.75},
      {"XXX-23", milliseconds(250), 4, 1, 0, 0, 0, 0},
  };
  for (const auto& row : rows) {
    const Zone zone(row.zone);
    const LocalTime local = localTime(moment + row.after);
    EXPECT_EQ(local.year, 2024) << row.zone;
    EXPECT_EQ(local.month, row.month) << row.zone;
    EXPECT_EQ(local.day, row.day) << row.zone;
    EXPECT_EQ(local.hour, row.hour) << row.zone;
    EXPECT_EQ(local.minute, row.minute) << row.zone;
    EXPECT_EQ(local.second, row.second) << row.zone;
    EXPECT_NEAR(local.timeOfDay, row.timeOfDay, 1e-6) << row.zone;
  }
}

}  // namespace
}  // namespace qv3
