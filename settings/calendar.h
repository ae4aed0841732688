#pragma once

#include <string>

namespace qv3 {

/// A moment as a calendar and a wall clock show it; month and day count from 1, hour from 0.
struct CalendarTime {
  int year = 0;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
};

/// "yy-mm-dd__Hh.Nn.Ss", the date and time in file names: "17-01-05__14.03.27".
std::string formatFileStamp(const CalendarTime& moment);

/// "h:mm AM/PM": "12:00 AM" at midnight, "1:07 PM".
std::string formatClock12(const CalendarTime& moment);

/// "HH:mm": "00:00" at midnight, "13:07".
std::string formatClock24(const CalendarTime& moment);

}  // namespace qv3
