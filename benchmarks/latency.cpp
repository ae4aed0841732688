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
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "tests/step/claps.h"
#include "tests/step/meterlog.h"
#include "tools/screen/screenfile.h"

namespace {

using qv3::test::Change;
using qv3::test::Moment;
using qv3::test::momentNow;

constexpr double kSettled = 300;  // ms: the needle has come to rest so long after a step
constexpr int kRows = 16;
constexpr double kLearning = 5000;  // ms
constexpr auto kLearningLook = std::chrono::milliseconds(10);
constexpr auto kLook = std::chrono::microseconds(50);

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
  for (const Moment end = momentNow() + kLearning; momentNow() < end;) {
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
std::vector<Moment> watch(std::span<const std::uint8_t> rows, Moment end) {
  std::vector<Moment> changes;
  Rows seen = copyOf(rows);
  while (momentNow() < end) {
    std::this_thread::sleep_for(kLook);
    if (same(rows, seen)) continue;
    changes.push_back(momentNow());
    seen = copyOf(rows);
  }
  return changes;
}

void printLatencies(const std::vector<Change>& steps, const std::vector<Moment>& changes,
                    Moment began, Moment ended) {
  for (const Change& step : steps) {
    if (step.at < began || step.at + kSettled > ended) continue;
    const auto change = std::lower_bound(changes.begin(), changes.end(), step.at);
    if (change == changes.end() || *change > step.at + kSettled) {
      std::fputs("bench-latency: a step that nothing on the screen followed\n", stderr);
    } else {
      std::printf("%.3f\n", *change - step.at);
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
  const Moment began = momentNow();
  const Moment ended = began + std::atoi(arguments[3]) * 1000;
  const std::vector<Moment> changes = watch(screen->rows(needle, kRows), ended);
  printLatencies(qv3::test::sentChanges(arguments[2]), changes, began, ended);
  return 0;
}
