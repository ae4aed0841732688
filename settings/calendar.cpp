#include "settings/calendar.h"

namespace qv3 {

namespace {

std::string twoDigits(int number) {
  const std::string digits = std::to_string(number % 100);
  return digits.size() < 2 ? "0" + digits : digits;
}

}  // namespace

std::string formatFileStamp(const CalendarTime& moment) {
  return twoDigits(moment.year) + "-" + twoDigits(moment.month) + "-" + twoDigits(moment.day) +
         "__" + twoDigits(moment.hour) + "." + twoDigits(moment.minute) + "." +
         twoDigits(moment.second);
}

std::string formatClock12(const CalendarTime& moment) {
  const int hour = moment.hour % 12 == 0 ? 12 : moment.hour % 12;
  return std::to_string(hour) + ":" + twoDigits(moment.minute) + (moment.hour < 12 ? " AM" : " PM");
}

std::string formatClock24(const CalendarTime& moment) {
  return twoDigits(moment.hour) + ":" + twoDigits(moment.minute);
}

}  // namespace qv3
