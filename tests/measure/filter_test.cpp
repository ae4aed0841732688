#include "measure/filter.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

TEST(Filter, SteadyReadingGrowsTheWindowToTen) {
  Filter filter;
  filter.refill(1000);
  filter.smoothed();
  for (int n = 0; n < 10; ++n) {
    filter.push(1000);
    filter.smoothed();
  }
  filter.push(1100);  // a change of exactly 100 leaves the length as it is
  EXPECT_EQ(filter.smoothed(), 1010);
  filter.push(1100);
  EXPECT_EQ(filter.smoothed(), 1020);
}

TEST(Filter, JumpShrinksTheWindowByOnePerSampleDownToThree) {
  Filter filter;
  filter.refill(0);
  for (int n = 0; n < 10; ++n) filter.smoothed();
  const int expected[] = {100, 222, 375, 571, 833, 1000};  // 10, 9, 8, 7, 6, 5 readings
  for (int n = 0; n < 6; ++n) {
    filter.push(1000);
    EXPECT_EQ(filter.smoothed(), expected[n]) << n;
  }
}

TEST(Filter, HalvesGoToEven) {
  Filter filter;
  filter.refill(0);
  filter.smoothed();  // three readings, then four
  filter.push(2);
  EXPECT_EQ(filter.smoothed(), 0) << "2 / 4 is a half";
}

}  // namespace
}  // namespace qv3
