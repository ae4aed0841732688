#include "measure/measurement.h"

#include <gtest/gtest.h>

#include <vector>

#include "measure/sensitivity.h"

namespace qv3 {
namespace {

// The limits; what the measurement does from sample to sample is pinned by the replay scripts.

TEST(Base, StepsAndTextsOverTheWholeRange) {
  struct Row {
    std::int32_t reading;
    int step;
    const char* text;
  };
  for (const Row& row : {Row{0, 4, "0.5"}, Row{32768, 124, "3.5"}, Row{65535, 245, "6.5"},
                         Row{26418, 101, "2.9"}, Row{65533, 244, "6.5"}}) {
    EXPECT_EQ(baseStep(row.reading), row.step);
    EXPECT_EQ(baseText(baseStep(row.reading)), row.text);
  }
}

TEST(Base, CounterLosesItsDecimalAtAHundredAndSaturates) {
  MeterState state;
  MeasureSettings settings;
  BaseCalculator base;
  settings.DialType = 0;
  state.BdRunning = true;
  EXPECT_EQ(bdText(999), "99.9");
  EXPECT_EQ(bdText(1000), "100");
  for (int n = 0; n < 800; ++n) {
    state.Reading = n % 2 == 0 ? 65535 : 0;
    base.Calc_Base(state, settings);
  }
  EXPECT_EQ(state.BdAccum, 32767);
  EXPECT_EQ(state.BdText, bdText(32767 / 4));
  BaseCalculator::zeroBd(state);
  EXPECT_EQ(state.BdText, "0.0");
  EXPECT_EQ(base.recorded().BdTenths, 32767 / 4) << "the recorder follows at the next computation";
}

TEST(Filter, TheWindowFollowsTheChange) {
  const struct {
    std::int32_t pushed;
    std::vector<std::int32_t> smoothed;
  } rows[] = {{100, {10, 20}},  // ten long, and a change of exactly 100 leaves it so
              {1000, {100, 222, 375, 571, 833, 1000}}};  // 10, 9, 8, ... readings
  for (const auto& row : rows) {
    Filter filter;
    filter.refill(0);
    for (int n = 0; n < 10; ++n) filter.smoothed();
    for (const std::int32_t smoothed : row.smoothed) {
      filter.push(row.pushed);
      EXPECT_EQ(filter.smoothed(), smoothed) << row.pushed;
    }
  }
}

TEST(Needle, StandsWhereTheDialSays) {
  struct Row {
    int dial, knob;
    std::int32_t value, position;  ///< centred at 30000
    OffScale offScale = OffScale::Unchanged;
  };
  for (const Row& row :
       {Row{1, 0, 30000, -2503, OffScale::Within}, Row{1, 0, 29000, -1503, OffScale::Within},
        Row{1, 0, 17496, 10500, OffScale::Above}, Row{1, 0, 17497, 10000, OffScale::Within},
        Row{1, 0, 0, 10500, OffScale::Above}, Row{1, 0, 37498, -10500, OffScale::Below},
        Row{1, 0, 37497, -10000, OffScale::Within}, Row{1, 0, 65535, -10500, OffScale::Below},
        Row{2, 12, 30000 - 3501, 8000}, Row{2, 12, 30000 - 3502, -6001},  // gain 3.0
        Row{2, 12, 30000 + 1832, -7999}, Row{2, 12, 30000 + 1833, 5999}, Row{0, 0, 29000, 1000},
        Row{3, 63, 30000 - 820, 32800 - 65536}}) {
    MeterState state;
    const MeasureSettings settings{row.dial, row.knob};
    NeedleCalculator needle;
    state.NeedleValue = 30000;
    needle.Calc_Needle(state, settings);
    state.Restart = state.SetRequest = false;
    state.NeedleValue = row.value;
    EXPECT_EQ(needle.Calc_Needle(state, settings).offScale, row.offScale) << row.value;
    EXPECT_EQ(state.NeedlePosition, row.position) << row.dial << " " << row.value;
  }
}

TEST(Sensitivity, StepsLandOnDifferentLabels) {
  struct Row {
    int from, up, down;
  };
  for (const Row& row : {Row{2, 4, 1}, Row{4, 5, 3}, Row{3, 4, 1}, Row{63, 63, 62}, Row{0, 1, 0},
                         Row{39, 40, 37}, Row{36, 38, 35}}) {
    EXPECT_EQ(Go_Up(row.from), row.up) << row.from;
    EXPECT_EQ(Go_Down(row.from), row.down) << row.from;
  }
  EXPECT_EQ(sensitivityRow(1).gain, 1.2F);
  EXPECT_EQ(sensitivityRow(63).gain, 40.0F);
  EXPECT_EQ(sensitivityRow(1000).label, "40");
}

TEST(BodyMotion, SecondDifferenceTriggersAndHoldsForHalfASecondAcrossMidnightToo) {
  MeterState state;
  Measurement measurement(state);
  const auto sample = [&](std::int32_t reading, float now) {
    state.Reading = reading;
    const SampleOutcome outcome = measurement.processSample({}, now);
    state.Restart = false;
    return outcome;
  };
  struct Row {
    std::int32_t reading;
    float now;
    bool triggered, ended, moving;
  };
  constexpr bool kNo = false;
  for (const Row& row :
       {Row{30000, 10.0F, kNo, kNo, kNo}, Row{30025, 10.02F, kNo, kNo, kNo},
        Row{30060, 10.04F, kNo, kNo, kNo},  // a steady rise is no movement
        Row{30000, 10.06F, true, kNo, true}, Row{30000, 10.08F, true, kNo, true},
        Row{30000, 10.5F, kNo, kNo, true}, Row{30000, 10.6F, kNo, true, kNo},
        Row{30200, 86399.8F, true, kNo, true}, Row{30200, 86399.9F, true, kNo, true},
        Row{30200, 0.1F, kNo, kNo, true}, Row{30200, 0.5F, kNo, true, kNo}}) {
    const SampleOutcome outcome = sample(row.reading, row.now);
    EXPECT_EQ(outcome.motionTriggered, row.triggered) << row.now;
    EXPECT_EQ(outcome.motionEnded, row.ended) << row.now;
    EXPECT_EQ(state.BodyMotion, row.moving) << row.now;
  }
  EXPECT_EQ(state.BasePosition, baseStep(30200)) << "at the end the base catches up, without a SET";
  EXPECT_FALSE(state.SetRequest);
  state.BmOff = true;
  EXPECT_FALSE(sample(65535, 1.0F).motionTriggered);
  EXPECT_FALSE(state.BodyMotion);
}

}  // namespace
}  // namespace qv3
