#pragma once

#include <chrono>

namespace qv3 {

/// The calendar and the clock on the wall, in local time.
struct LocalTime {
  int year = 0;
  int month = 1;  ///< 1..12
  int day = 1;    ///< 1..31
  int hour = 0;
  int minute = 0;
  int second = 0;
  double timeOfDay = 0;  ///< seconds since midnight, with their fraction
};

LocalTime localTime(std::chrono::system_clock::time_point time);
inline LocalTime localTime() {
  return localTime(std::chrono::system_clock::now());
}

/// Seconds since local midnight.
inline double timeOfDay() {
  return localTime().timeOfDay;
}

/// A clock that nobody sets: microseconds since some moment before the program began.
std::chrono::microseconds steadyTime();

}  // namespace qv3
