// bench-latency SCREEN LOG SECONDS: how long after the meter sent a changed reading the screen
// changed, in milliseconds, a line for each change. SCREEN is a virtual display's picture, LOG what
// meter-sim --log writes; the meter must send steps that are apart by at least kSettled.
//
// Looks at a few rows of the upper half of the screen, where the tip of the needle is, every 50
// microseconds, on the clock that the log has.

#include <sys/prctl.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tools/screen/screenfile.h"

namespace {

using Nanos = std::int64_t;

constexpr Nanos kSecond = 1'000'000'000;
constexpr Nanos kSettled = 300'000'000;  // the needle has come to rest so long after a step
constexpr int kRows = 16;
constexpr Nanos kLearning = 5 * kSecond;
constexpr auto kLearningLook = std::chrono::milliseconds(10);
constexpr auto kLook = std::chrono::microseconds(50);

Nanos monotonicNow() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec * kSecond + time.tv_nsec;
}

using Rows = std::vector<std::uint8_t>;

Rows copyOf(std::span<const std::uint8_t> rows) {
  return {rows.begin(), rows.end()};
}

bool same(std::span<const std::uint8_t> live, const Rows& seen) {
  return std::equal(live.begin(), live.end(), seen.begin());
}

/// The uppermost row that changes about as often as the busiest one of the upper half does.
int findNeedle(const qv3::ScreenFile& screen) {
  const int height = screen.layout().height / 2 - kRows;
  std::vector<Rows> seen;
  for (int y = 0; y < height; ++y) seen.push_back(copyOf(screen.rows(y, 1)));
  std::vector<int> changes(seen.size());
  for (const Nanos end = monotonicNow() + kLearning; monotonicNow() < end;) {
    std::this_thread::sleep_for(kLearningLook);
    for (std::size_t y = 0; y < seen.size(); ++y) {
      const auto live = screen.rows(static_cast<int>(y), 1);
      if (same(live, seen[y])) continue;
      ++changes[y];
      seen[y] = copyOf(live);
    }
  }
  const int most = *std::max_element(changes.begin(), changes.end());
  if (most < 3) return -1;
  const auto first =
      std::find_if(changes.begin(), changes.end(), [most](int n) { return 2 * n >= most; });
  return static_cast<int>(first - changes.begin());
}

/// When these rows were found changed.
std::vector<Nanos> watch(std::span<const std::uint8_t> rows, Nanos end) {
  std::vector<Nanos> changes;
  Rows seen = copyOf(rows);
  while (monotonicNow() < end) {
    std::this_thread::sleep_for(kLook);
    if (same(rows, seen)) continue;
    changes.push_back(monotonicNow());
    seen = copyOf(rows);
  }
  return changes;
}

/// When the meter sent a reading other than the one before.
std::vector<Nanos> readSteps(const std::string& path) {
  std::vector<Nanos> steps;
  std::ifstream log(path);
  Nanos sent = 0;
  std::string frame;
  std::string last;
  while (log >> sent >> frame) {
    if (!last.empty() && frame != last) steps.push_back(sent);
    last = frame;
  }
  return steps;
}

void printLatencies(const std::vector<Nanos>& steps, const std::vector<Nanos>& changes, Nanos began,
                    Nanos ended) {
  for (const Nanos step : steps) {
    if (step < began || step + kSettled > ended) continue;
    const auto change = std::lower_bound(changes.begin(), changes.end(), step);
    if (change == changes.end() || *change > step + kSettled) {
      std::fputs("bench-latency: a step that nothing on the screen followed\n", stderr);
    } else {
      std::printf("%.3f\n", static_cast<double>(*change - step) / 1e6);
    }
  }
}

int fail(const std::string& text) {
  std::fprintf(stderr, "bench-latency: %s\n", text.c_str());
  return 1;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 4) return fail("SCREEN LOG SECONDS");
  std::string error;
  const auto screen = qv3::ScreenFile::open(arguments[1], error);
  if (!screen) return fail(error);
  prctl(PR_SET_TIMERSLACK, 1UL);
  const int needle = findNeedle(*screen);
  if (needle < 0) return fail("nothing moves");
  const Nanos began = monotonicNow();
  const Nanos ended = began + std::atoi(arguments[3]) * kSecond;
  const std::vector<Nanos> changes = watch(screen->rows(needle, kRows), ended);
  printLatencies(readSteps(arguments[2]), changes, began, ended);
  return 0;
}
