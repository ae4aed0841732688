// Loaded into a sound server before all else: its steady clock, and with it the null sink, runs
// STEP_CLOCK_PPM parts in a million faster than the machine's.

#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

std::int64_t skewed(std::int64_t nanoseconds) {
  static const char* const text = std::getenv("STEP_CLOCK_PPM");
  static const int ppm = text == nullptr ? 0 : std::atoi(text);
  return nanoseconds + nanoseconds / 1'000'000 * ppm;
}

}  // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  const long result = syscall(SYS_clock_gettime, clock, time);
  if (result != 0 || clock != CLOCK_MONOTONIC) return static_cast<int>(result);
  const std::int64_t now = skewed(time->tv_sec * kSecond + time->tv_nsec);
  time->tv_sec = now / kSecond;
  time->tv_nsec = now % kSecond;
  return 0;
}
