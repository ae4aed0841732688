#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "measure/measurement.h"
#include "tools/metersim/core/signalspec.h"
#include "tools/metersim/core/skinevents.h"
#include "tools/metersim/core/skinsignal.h"

namespace qv3::metersim {
namespace {

std::vector<double> readings(std::string_view spec, int count, std::uint64_t seed = 1) {
  const SignalSpecResult parsed = parseSignalSpec(spec);
  EXPECT_EQ(parsed.error, "");
  const SignalResult made = makeSignal(parsed.spec, seed, AtEnd::Repeat);
  std::vector<double> list;
  for (int i = 0; i < count; ++i) list.push_back(made.signal->next().value());
  return list;
}

double largestSecondDifference(const std::vector<double>& list) {
  double largest = 0;
  for (std::size_t i = 2; i < list.size(); ++i) {
    largest = std::max(largest, std::abs(list[i] - 2 * list[i - 1] + list[i - 2]));
  }
  return largest;
}

/// How the needle of the arc dial fares, with the off-scale timers of 1000 and 400 ms.
struct NeedleRun {
  double onScale = 0;  ///< part of the time
  int autoSets = 0;
  int motions = 0;
  int visibleFalls = 0;  ///< times the needle went to the right by a twentieth of the dial
};

NeedleRun runNeedle(std::uint64_t seed, int knob, int minutes) {
  SkinSignal signal(seed);
  MeterState state;
  MeasureSettings settings;
  settings.KnobPosition = knob;
  Measurement measurement(state);
  NeedleRun run;
  const int samples = minutes * 60 * kFramesPerSecond;
  int offSamples = 0;
  int outside = 0;
  int lowest = 0;
  for (int i = 0; i < samples; ++i) {
    const bool moving = state.BodyMotion;
    state.Reading = static_cast<std::int32_t>(std::lround(signal.next().value()));
    measurement.processSample(settings, static_cast<float>(i) * 0.02F);
    run.motions += state.BodyMotion && !moving ? 1 : 0;
    const NeedleOutcome outcome = measurement.Calc_Needle(settings);
    state.Restart = false;
    const bool off = std::abs(state.NeedlePosition) > 10000;
    offSamples += off ? 1 : 0;
    outside = off ? outside + 1 : 0;
    if (outside >= (outcome.offScale == OffScale::Above ? 50 : 20)) {
      state.SetRequest = true;
      outside = 0;
      ++run.autoSets;
    }
    lowest = std::min(lowest, state.NeedlePosition);
    if (state.NeedlePosition > lowest + 1000) {
      ++run.visibleFalls;
      lowest = state.NeedlePosition;
    } else if (outcome.set) {
      lowest = state.NeedlePosition;
    }
  }
  run.onScale = 1 - static_cast<double>(offSamples) / samples;
  return run;
}

TEST(MeterSimSignal, SkinShowsWellAtBothSensitivities) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    const NeedleRun low = runNeedle(seed, 0, 10);
    EXPECT_GT(low.onScale, 0.98) << seed;
    EXPECT_GE(low.visibleFalls, 10) << seed;
    EXPECT_GE(low.motions, 5) << seed;
    EXPECT_LE(low.motions, 25) << seed;
    const NeedleRun high = runNeedle(seed, 12, 10);
    EXPECT_GT(high.onScale, 0.93) << seed;
    EXPECT_GE(high.autoSets, 5) << seed;
    EXPECT_LE(high.autoSets, 60) << seed;
  }
}

TEST(MeterSimSignal, TheSeedDecides) {
  EXPECT_EQ(readings("skin", 3000, 7), readings("skin", 3000, 7));
  EXPECT_NE(readings("skin", 3000, 7), readings("skin", 3000, 8));
}

TEST(MeterSimSignal, AFallIsAsDeepAsAskedRecoversAndIsNoMovement) {
  for (const Fall& fall : {Fall{}, Fall{15000, 2.4, 9}, Fall{600, 0.9, 1.5}}) {
    SkinEvents events;
    events.start(fall);
    std::vector<double> course{0, 0};
    while (course.size() < 100 || course.back() < -0.1 * fall.size) course.push_back(events.next());
    const auto deepest = std::min_element(course.begin(), course.end());
    EXPECT_NEAR(*deepest, -fall.size, 0.01 * fall.size);
    EXPECT_LE(static_cast<double>(deepest - course.begin()) * kFrameSeconds, fall.onset + 0.1);
    // From the deepest point to a tenth: 2.3 time constants.
    EXPECT_NEAR(static_cast<double>(course.end() - deepest) * kFrameSeconds, 2.3 * fall.recovery,
                0.2 * fall.recovery);
    EXPECT_LT(largestSecondDifference(course), 30);
  }
}

TEST(MeterSimSignal, AMovementTripsTheCoarsestDetectorAndPasses) {
  SkinEvents events;
  events.start(Movement{});
  std::vector<double> course;
  for (int i = 0; i < 60; ++i) course.push_back(events.next());
  EXPECT_GT(largestSecondDifference(course), 100);
  EXPECT_EQ(course.back(), 0);
}

TEST(MeterSimSignal, PlainSignalsHaveTheirLevelsAndPeriods) {
  EXPECT_EQ(readings("constant:12345", 3), (std::vector<double>{12345, 12345, 12345}));
  EXPECT_EQ(readings("ramp:100:200:0.08", 6), (std::vector<double>{100, 125, 150, 175, 100, 125}));
  EXPECT_EQ(readings("step:1:2:0.04", 6), (std::vector<double>{1, 1, 2, 2, 1, 1}));
  const std::vector<double> sine = readings("sine:30000:1000:0.16", 9);
  EXPECT_DOUBLE_EQ(sine[0], 30000);
  EXPECT_DOUBLE_EQ(sine[2], 31000);
  EXPECT_DOUBLE_EQ(sine[6], 29000);
  EXPECT_DOUBLE_EQ(sine[8], sine[0]);
}

TEST(MeterSimSignal, AListRepeatsHoldsOrStops) {
  const ReadingsResult list = parseReadings("# two\r\n\n 7 \r\n65535\n\n");
  ASSERT_EQ(list.readings, (std::vector<std::uint16_t>{7, 65535}));
  using Maybe = std::optional<double>;
  for (const auto& [atEnd, third, fourth] : {std::tuple(AtEnd::Repeat, Maybe(7), Maybe(65535)),
                                             std::tuple(AtEnd::Hold, Maybe(65535), Maybe(65535)),
                                             std::tuple(AtEnd::Stop, Maybe(), Maybe())}) {
    ListSignal signal(list.readings, atEnd);
    EXPECT_EQ(signal.next(), 7);
    EXPECT_EQ(signal.next(), 65535);
    EXPECT_EQ(signal.next(), third);
    EXPECT_EQ(signal.next(), fourth);
  }
}

TEST(MeterSimSignal, BadListsNameTheirLine) {
  for (const auto& [text, error] :
       {std::pair("1\n2x\n", "line 2"), std::pair("1\n\n65536", "line 3"),
        std::pair("-1", "line 1"), std::pair("1.5", "line 1"), std::pair("1,2", "line 1"),
        std::pair("# none\n", "no readings"), std::pair("", "no readings")}) {
    EXPECT_NE(parseReadings(text).error.find(error), std::string::npos) << text;
  }
  EXPECT_NE(makeSignal({SignalKind::List, {}, "/nowhere.csv"}, 1, AtEnd::Hold).error, "");
}

}  // namespace
}  // namespace qv3::metersim
