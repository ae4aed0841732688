// How many frames a second one core takes from characters to needle position, without a window: a
// line for each run, first the whole instrument, then the floor, which only reads the digits.

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "benchmarks/nosound.h"
#include "instrument/instrument.h"
#include "settings/settingsrows.h"

namespace {

using namespace qv3;
using Clock = std::chrono::steady_clock;

constexpr int kRuns = 7;
constexpr int kRounds = 250;
constexpr std::size_t kFrameLength = 6;

/// Frames as a calm person gives them: slow waves and a little noise.
std::vector<std::array<char, kFrameLength>> makeFrames() {
  std::vector<std::array<char, kFrameLength>> frames(8192);
  unsigned noise = 1;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    noise = noise * 1664525U + 1013904223U;
    const double wave = 400 * std::sin(static_cast<double>(i) * 2 * 3.14159265 / 4096);
    const int reading = 26000 + static_cast<int>(wave) + static_cast<int>(noise >> 29);
    char text[kFrameLength + 1];
    std::snprintf(text, sizeof text, "P%04X\r", static_cast<unsigned>(reading) & 0xFFFFU);
    std::copy_n(text, kFrameLength, frames[i].begin());
  }
  return frames;
}

using Frames = std::vector<std::array<char, kFrameLength>>;

/// The result depends on every frame, so that none can be left out.
std::int64_t wholeInstrument(const Frames& frames) {
  ProgramSettings settings;
  for (const SettingRow& row : settingsRows()) setFromText(settings, row, row.defaultText);
  settings.ComPort = 1;
  settings.KnobPosition = 24;
  NoPort line;
  CommPort port(line);
  NoDisplay display;
  bench::NoSound sound;
  Instrument instrument(settings, port, display, sound);
  Now now{Instant{0}, 43200};
  instrument.core().state.MeterVersion = "3A";
  instrument.connected(kFrameLength, now);
  std::int64_t sum = 0;
  for (int round = 0; round < kRounds; ++round) {
    for (const auto& frame : frames) {
      now.steady += std::chrono::milliseconds(20);
      now.timeOfDay += 0.02;
      if (now.timeOfDay >= 86400) now.timeOfDay -= 86400;
      instrument.advance(now);
      port.charactersArrived({frame.data(), frame.size()});
      instrument.receive(now);
      sum += instrument.state().NeedlePosition;
    }
  }
  return sum;
}

std::int64_t onlyDigits(const Frames& frames) {
  std::int64_t sum = 0;
  for (int round = 0; round < kRounds; ++round) {
    for (const auto& frame : frames) {
      int reading = 0;
      for (std::size_t i = 1; i <= 4; ++i) {
        const char c = frame[i];
        reading = reading * 16 + (c <= '9' ? c - '0' : c - 'A' + 10);
      }
      sum += reading ^ round;
    }
  }
  return sum;
}

template <typename What>
void measure(const char* name, const Frames& frames, What what) {
  for (int run = 0; run < kRuns; ++run) {
    const Clock::time_point began = Clock::now();
    const std::int64_t sum = what(frames);
    const std::chrono::duration<double> took = Clock::now() - began;
    const double count = static_cast<double>(frames.size()) * kRounds;
    if (sum == 0) std::exit(1);  // it is not, but then the sum is needed
    std::printf("%s %.3f\n", name, count / took.count() / 1e6);
  }
}

}  // namespace

int main() {
  const Frames frames = makeFrames();
  measure("program", frames, wholeInstrument);
  measure("floor", frames, onlyDigits);
  return 0;
}
