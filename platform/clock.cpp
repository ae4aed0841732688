#include "platform/clock.h"

#include <ctime>

namespace qv3 {

LocalTime localTime(std::chrono::system_clock::time_point time) {
  using std::chrono::duration;
  using std::chrono::floor;
  using std::chrono::seconds;
  using std::chrono::system_clock;
  const auto whole = floor<seconds>(time);
  const std::time_t second = system_clock::to_time_t(whole);
  std::tm local{};
  localtime_r(&second, &local);
  const double timeOfDay = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec +
                           duration<double>(time - whole).count();
  return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
          local.tm_min,         local.tm_sec,     timeOfDay};
}

std::chrono::microseconds steadyTime() {
  return std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace qv3
