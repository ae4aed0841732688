#include "measure/base.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

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

struct BdCounter : testing::Test {
  MeterState state;
  MeasureSettings settings;
  BaseCalculator base;

  BdCounter() {
    settings.DialType = 0;
    state.BdRunning = true;
    state.SetRequest = false;
  }
  ReadoutChange at(std::int32_t reading) {
    state.Reading = reading;
    return base.Calc_Base(state, settings);
  }
};

TEST_F(BdCounter, CountsFallsAndNoRises) {
  at(30000);
  const int start = state.BasePosition;
  at(30000 - 4 * 273);  // four steps lower
  ASSERT_EQ(start - state.BasePosition, 4);
  EXPECT_EQ(state.BdAccum, 4);
  EXPECT_EQ(state.BdText, "0.1");
  EXPECT_FALSE(at(60000).bd);
  EXPECT_EQ(state.BdAccum, 4);
}

TEST_F(BdCounter, DropsDuringBodyMotionAreLost) {
  at(30000);
  state.BodyMotion = true;
  const BaseRecord held = base.recorded();
  EXPECT_FALSE(at(10000).base);
  EXPECT_EQ(state.BasePosition, baseStep(10000));
  EXPECT_EQ(base.recorded().BasePosition, held.BasePosition);
  state.BodyMotion = false;
  at(10000);
  EXPECT_EQ(state.BdAccum, 0);
  EXPECT_EQ(base.recorded().BasePosition, baseStep(10000));
}

TEST_F(BdCounter, TraditionalDialNeedsTheCounterOrASet) {
  settings.DialType = 1;
  EXPECT_FALSE(at(30000).base);
  EXPECT_EQ(state.BasePosition, 0);
  state.SetRequest = true;
  EXPECT_TRUE(at(30000).base);
  state.SetRequest = false;
  settings.NeedleBdEnable = true;
  at(20000);
  EXPECT_GT(state.BdAccum, 0);
  state.BdRunning = false;
  const int before = state.BdAccum;
  at(10000);
  EXPECT_EQ(state.BdAccum, before);
}

TEST_F(BdCounter, LosesItsDecimalAtAHundredAndSaturates) {
  EXPECT_EQ(bdText(999), "99.9");
  EXPECT_EQ(bdText(1000), "100");
  for (int n = 0; n < 400; ++n) {
    at(65535);
    at(0);
  }
  EXPECT_EQ(state.BdAccum, 32767);
  EXPECT_EQ(state.BdText, bdText(32767 / 4));
  BaseCalculator::zeroBd(state);
  EXPECT_EQ(state.BdText, "0.0");
  EXPECT_EQ(base.recorded().BdTenths, 32767 / 4) << "the recorder follows at the next computation";
}

TEST_F(BdCounter, UnknownDialTypesDoNothing) {
  settings.DialType = 4;
  state.SetRequest = true;
  EXPECT_FALSE(at(30000).base);
}

}  // namespace
}  // namespace qv3
