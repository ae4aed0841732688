#include "measure/needle.h"

#include <gtest/gtest.h>

#include <string>

#include "measure/measurement.h"
#include "measure/sensitivity.h"

namespace qv3 {
namespace {

struct Needle : testing::Test {
  MeterState state;
  MeasureSettings settings;
  NeedleCalculator needle;

  void centreAt(std::int32_t value) {
    state.NeedleValue = value;
    state.Restart = true;
    needle.Calc_Needle(state, settings);
    state.Restart = false;
    state.SetRequest = false;
  }
  std::int32_t positionAt(std::int32_t value) {
    state.NeedleValue = value;
    last = needle.Calc_Needle(state, settings);
    return state.NeedlePosition;
  }
  NeedleOutcome last;
};

TEST_F(Needle, FallingReadingMovesTowardsPositive) {
  centreAt(30000);
  EXPECT_EQ(positionAt(30000), -2503);
  EXPECT_EQ(positionAt(29000), -1503);
  settings.DialType = 0;
  centreAt(30000);
  EXPECT_EQ(positionAt(29000), 1000);
}

TEST_F(Needle, TraditionalDialStopsAtTheEnds) {
  struct Row {
    std::int32_t value, position;
    OffScale offScale;
  };
  centreAt(30000);
  for (const Row& row :
       {Row{17496, 10500, OffScale::Above}, Row{17497, 10000, OffScale::Within},
        Row{0, 10500, OffScale::Above}, Row{37498, -10500, OffScale::Below},
        Row{37497, -10000, OffScale::Within}, Row{65535, -10500, OffScale::Below}}) {
    EXPECT_EQ(positionAt(row.value), row.position) << row.value;
    EXPECT_EQ(last.offScale, row.offScale) << row.value;
  }
}

TEST_F(Needle, ContinuousDialReRangesInTheSameSample) {
  settings.DialType = 2;
  settings.KnobPosition = 12;  // gain 3.0
  centreAt(30000);
  EXPECT_EQ(positionAt(30000 - 3501), 8000);
  EXPECT_NEAR(positionAt(30000 - 3502), -6000, 2);
  centreAt(30000);
  EXPECT_NEAR(positionAt(30000 + 1833), 6000, 2);
}

TEST_F(Needle, CircularDialGoesRound) {
  settings.DialType = 3;
  settings.KnobPosition = 63;  // gain 40
  centreAt(30000);
  EXPECT_EQ(positionAt(30000 - 820), 32800 - 65536);
}

TEST_F(Needle, TurningTheKnobDoesNotMoveTheNeedle) {
  for (const int dial : {0, 1, 2, 3}) {
    settings.DialType = dial;
    for (const int row : {63, 5, 40, 70, 30}) {
      settings.KnobPosition = 0;
      centreAt(30000);
      const std::int32_t before = positionAt(29100);
      settings.KnobPosition = row;
      EXPECT_NEAR(positionAt(29100), before, 20)
          << dial << " " << row;  // half a reading at gain 40
    }
  }
}

TEST_F(Needle, FrozenNeedleStandsWhileTheSetPointFollows) {
  for (const int dial : {0, 1, 2, 3}) {
    settings.DialType = dial;
    centreAt(30000);
    const std::int32_t before = positionAt(29000);
    state.Frozen = true;
    EXPECT_EQ(positionAt(20000), before) << dial;
    state.SetRequest = true;
    positionAt(20000);
    EXPECT_EQ(state.SetRequest, isArcDial(dial)) << "arc dials hold a SET back while frozen";
    state.Frozen = false;
    state.SetRequest = false;
  }
}

TEST_F(Needle, SetWaitsForTheSampleAfterARestart) {
  state.NeedleValue = 30000;
  state.Restart = true;
  EXPECT_FALSE(needle.Calc_Needle(state, settings).set);
  state.Restart = false;
  positionAt(29000);
  EXPECT_TRUE(last.set);
  EXPECT_EQ(state.SetPoint, 29000);
  EXPECT_EQ(state.NeedlePosition, -2503);
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

struct BodyMotion : testing::Test {
  MeterState state;
  MeasureSettings settings;
  Measurement measurement{state};

  SampleOutcome sample(std::int32_t reading, float now) {
    state.Reading = reading;
    const SampleOutcome outcome = measurement.processSample(settings, now);
    state.Restart = false;
    return outcome;
  }
};

TEST_F(BodyMotion, SecondDifferenceTriggersAndHoldsForHalfASecond) {
  sample(30000, 10.0F);
  EXPECT_FALSE(sample(30025, 10.02F).motionTriggered);
  EXPECT_FALSE(sample(30060, 10.04F).motionTriggered) << "a steady rise is no movement";
  EXPECT_TRUE(sample(30000, 10.06F).motionTriggered);
  EXPECT_TRUE(sample(30000, 10.08F).motionTriggered);
  EXPECT_FALSE(sample(30000, 10.5F).motionEnded);
  EXPECT_TRUE(state.BodyMotion);
  EXPECT_TRUE(sample(30000, 10.6F).motionEnded);
  EXPECT_FALSE(state.BodyMotion);
}

TEST_F(BodyMotion, HoldSurvivesMidnight) {
  sample(30000, 86399.7F);
  EXPECT_TRUE(sample(30200, 86399.8F).motionTriggered);
  sample(30200, 86399.9F);
  EXPECT_FALSE(sample(30200, 0.1F).motionEnded);
  EXPECT_TRUE(sample(30200, 0.5F).motionEnded);
}

TEST_F(BodyMotion, EndLetsTheBaseCatchUpWithoutASetOrBd) {
  state.BdRunning = true;
  sample(40000, 1.0F);
  state.SetRequest = false;
  settings.FreezeEnable = true;
  sample(20000, 1.1F);
  EXPECT_TRUE(state.Frozen);
  sample(20000, 1.12F);
  const SampleOutcome end = sample(20000, 1.7F);
  EXPECT_TRUE(end.motionEnded);
  EXPECT_TRUE(end.readouts.base);
  EXPECT_EQ(state.BaseText, baseText(baseStep(20000)));
  EXPECT_EQ(state.BdAccum, 0);
  EXPECT_FALSE(state.SetRequest);
  EXPECT_FALSE(state.Frozen);
}

TEST_F(BodyMotion, SwitchedOffNeverTriggers) {
  state.BmOff = true;
  sample(0, 1.0F);
  EXPECT_FALSE(sample(65535, 1.02F).motionTriggered);
  EXPECT_FALSE(state.BodyMotion);
}

}  // namespace
}  // namespace qv3
