#include "display/geometry/dialgeometry.h"

#include <gtest/gtest.h>

#include <cmath>

#include "display/geometry/dialplaces.h"

namespace qv3 {
namespace {

using dial::Face;

double radiusOf(dial::Point p) {
  return std::hypot(p.x, p.y);
}

/// Degrees counter-clockwise from the +x axis.
double angleOf(dial::Point p) {
  return std::atan2(p.y, p.x) * 180 / 3.14159;
}

TEST(CAng, FoldsOneTurnAndAvoidsZero) {
  const float rows[][2] = {{0.0F, 0.00001F},   {-0.5F, 5.78318F}, {7.0F, 0.71682F},
                           {-7.0F, -0.71682F}, {3.0F, 3.0F},      {6.28318F, 6.28318F},
                           {14.0F, 7.71682F}};
  for (const auto& row : rows) EXPECT_NEAR(CAng(row[0]), row[1], 1e-6) << row[0];
}

TEST(ArcScale, FineTicksReachTheOuterArcAtEvenOnes) {
  const auto ticks = dial::scaleTicks(Face::Arc, 0);
  ASSERT_EQ(ticks.size(), 41U);
  for (std::size_t k = 0; k < ticks.size(); ++k) {
    EXPECT_NEAR(angleOf(ticks[k].from), 35 + 2.75 * static_cast<double>(k), 0.001) << k;
    EXPECT_NEAR(radiusOf(ticks[k].from), 1020, 1e-9) << k;
    EXPECT_NEAR(radiusOf(ticks[k].to), k % 2 == 0 ? 1070 : 1040, 1e-9) << k;
  }
}

TEST(ArcScale, GapHoldsTheSetTickAndTheLamp) {
  const auto arcs = dial::scaleArcs(Face::Arc, 0);
  ASSERT_EQ(arcs.size(), 4U);
  const double rows[][3] = {
      {1020, 35, 101}, {1020, 106.5, 145}, {1070, 35, 101}, {1070, 106.5, 145}};
  for (std::size_t i = 0; i < arcs.size(); ++i) {
    EXPECT_EQ(arcs[i].radius, rows[i][0]);
    EXPECT_NEAR(arcs[i].from * 180 / 3.14159, rows[i][1], 0.01) << i;
    EXPECT_NEAR(arcs[i].to * 180 / 3.14159, rows[i][2], 0.01) << i;
  }
  const dial::Lamp lamp = dial::lamp(1, 1000);
  EXPECT_NEAR(lamp.at.x, -254.4, 0.1);
  EXPECT_NEAR(lamp.at.y, 1039.4, 0.1);
  EXPECT_NEAR(angleOf(lamp.at), angleOf(dial::scaleTicks(Face::Arc, 0)[25].to), 0.01);
}

TEST(ArcScale, SimpleScaleHasNineTicksTwoStubsAndTheSetMark) {
  const auto ticks = dial::scaleTicks(Face::Arc, 1);
  ASSERT_EQ(ticks.size(), 9U);
  for (std::size_t k = 0; k < ticks.size(); ++k) {
    EXPECT_NEAR(angleOf(ticks[k].to), 35 + 13.75 * static_cast<double>(k), 0.001);
    EXPECT_NEAR(radiusOf(ticks[k].to), 1050, 1e-9);
  }
  const auto arcs = dial::scaleArcs(Face::Arc, 1);
  ASSERT_EQ(arcs.size(), 3U);
  const double rows[][2] = {{145, 147.75}, {32.25, 35}, {102.9, 104.6}};
  for (std::size_t i = 0; i < arcs.size(); ++i) {
    EXPECT_NEAR(arcs[i].from * 180 / 3.14159, rows[i][0], 0.05) << i;
    EXPECT_NEAR(arcs[i].to * 180 / 3.14159, rows[i][1], 0.05) << i;
  }
}

TEST(RoundScale, TicksGoClockwiseFromTheTop) {
  struct Row {
    int scaleType;
    std::size_t count;
    double from;
    double to;
    std::size_t arcs;
  };
  for (const Row& row : {Row{0, 40, 550, 575, 1}, Row{1, 16, 535, 560, 0}}) {
    const auto ticks = dial::scaleTicks(Face::Round, row.scaleType);
    ASSERT_EQ(ticks.size(), row.count);
    EXPECT_EQ(dial::scaleArcs(Face::Round, row.scaleType).size(), row.arcs);
    EXPECT_NEAR(ticks[0].from.y, 600 + row.from, 1e-9);
    EXPECT_NEAR(ticks[0].to.y, 600 + row.to, 1e-9);
    const dial::Line& right = ticks[row.count / 4];
    EXPECT_NEAR(right.to.x, row.to, 0.01);
    EXPECT_NEAR(right.to.y, 600, 0.01);
  }
}

TEST(Faces, TypesShareThemAndUnknownOnesHaveNone) {
  const Face expected[] = {Face::Round, Face::Arc, Face::Arc, Face::Round, Face::None};
  for (int type = 0; type < 5; ++type) {
    EXPECT_EQ(dial::faceOf(type), expected[type]);
    EXPECT_EQ(dial::drawnFace(type, 1), expected[type]);
    EXPECT_EQ(dial::drawnFace(type, 2), Face::None);
  }
  EXPECT_EQ(dial::faceOf(-1), Face::None);
  EXPECT_EQ(dial::drawnFace(1, -1), Face::None);
}

struct NeedleRow {
  int dialType;
  std::int32_t value;
  dial::Point from;
  dial::Point to;
};

class NeedleSegment : public testing::TestWithParam<NeedleRow> {};

TEST_P(NeedleSegment, LiesAlongItsValue) {
  const NeedleRow& row = GetParam();
  const dial::Line line = dial::needle(row.dialType, row.value);
  EXPECT_NEAR(line.from.x, row.from.x, 0.05);
  EXPECT_NEAR(line.from.y, row.from.y, 0.05);
  EXPECT_NEAR(line.to.x, row.to.x, 0.05);
  EXPECT_NEAR(line.to.y, row.to.y, 0.05);
}

INSTANTIATE_TEST_SUITE_P(Directions, NeedleSegment,
                         testing::Values(NeedleRow{1, 0, {0, 500}, {0, 1000}},
                                         NeedleRow{2, 16384, {500, 0}, {1000, 0}},
                                         NeedleRow{1, 10012, {409.6, 286.8}, {819.15, 573.6}},
                                         NeedleRow{1, -2503, {-118.8, 485.7}, {-237.7, 971.3}},
                                         NeedleRow{0, 0, {0, 650}, {0, 1100}},
                                         NeedleRow{3, 16384, {50, 600}, {500, 600}},
                                         NeedleRow{0, -32768, {0, 550}, {0, 100}}));

TEST(Needle, OppositeArmIsHalfATurnAway) {
  const dial::Line arm = dial::oppositeArm(3, 0);
  EXPECT_NEAR(arm.from.y, 550, 1e-9);
  EXPECT_NEAR(arm.to.y, 100, 1e-9);
}

TEST(Shadow, AppearsBeyondSixThousandAndStaysUntilFour) {
  struct Row {
    std::int32_t value;
    bool shown;
    std::int32_t at;
  };
  bool shown = false;
  for (const Row& row : {Row{3000, false, -11016}, Row{5000, false, -9016}, Row{6000, false, -8016},
                         Row{7000, true, -7016}, Row{5000, true, -9016}, Row{4000, true, -10016},
                         Row{3999, false, -10017}, Row{-6000, false, 8016}, Row{-7000, true, 7016},
                         Row{0, false, 0}}) {
    shown = dial::shadowShown(shown, row.value);
    EXPECT_EQ(shown, row.shown) << row.value;
    EXPECT_EQ(dial::shadowValue(row.value), row.at);
  }
}

TEST(Needle, LeavesBareDialOnlyOutsideTheFace) {
  struct Row {
    Face drawn;
    int dialType;
    std::int32_t value;
    bool bare;
  };
  // The sides of the arc dial stand at 61.1 degrees, that is 11124.
  for (const Row& row : {Row{Face::Arc, 1, 0, true}, Row{Face::Arc, 1, 10500, true},
                         Row{Face::Arc, 1, -10500, true}, Row{Face::Arc, 1, 11100, false},
                         Row{Face::Arc, 1, -11200, false}, Row{Face::Arc, 1, 32000, false},
                         Row{Face::Round, 3, 20000, true}, Row{Face::None, 1, 0, false}}) {
    EXPECT_EQ(dial::onBareDial(row.drawn, dial::needle(row.dialType, row.value), 5), row.bare)
        << row.value;
  }
}

TEST(Lamp, SitsAtTheHubOfTheRoundDial) {
  EXPECT_EQ(dial::lamp(0, 1049).at.y, 600);
  EXPECT_EQ(dial::lamp(0, 1049).diameter, 21);
  EXPECT_EQ(dial::lamp(2, 1049).diameter, 17);
}

TEST(PanelMap, PutsTheCornersOnTheSurfacesCorners) {
  const PanelMap map(1000, 625);
  EXPECT_NEAR(map.at({-1000, 1200}).x, 0, 1e-9);
  EXPECT_NEAR(map.at({-1000, 1200}).y, 0, 1e-9);
  EXPECT_NEAR(map.at({1000, -50}).x, 1000, 1e-9);
  EXPECT_NEAR(map.at({1000, -50}).y, 625, 1e-9);
  EXPECT_NEAR(map.at({0, 0}).y, 600, 1e-9);
}

TEST(PanelMap, KeepsTheShapeOnAnotherSurface) {
  const PanelMap wide(1200, 625);
  EXPECT_NEAR(wide.at({-1000, 1200}).x, 100, 1e-9);
  EXPECT_NEAR(wide.width(), 1000, 1e-9);
  const PanelMap nothing(0, 10);
  EXPECT_EQ(nothing.units(5), 0);
}

TEST(NeedleWords, CountFromTheSetMark) {
  EXPECT_EQ(dial::percentFromSet(-2503), 0);
  EXPECT_EQ(dial::percentFromSet(10012), 62);
  EXPECT_EQ(dial::percentFromSet(-10012), -37);
  EXPECT_EQ(dial::degreesFromSet(16384), 90);
  EXPECT_EQ(dial::degreesFromSet(40000), -140);
}

TEST(Places, NeedleAtTheSetMarkPassesBetweenModeWordAndStatus) {
  const dial::Line needle = dial::needle(1, -2503);
  const dial::Place word = dial::modeWordPlace(Face::Arc);
  const dial::Place status = dial::statusPlace(Face::Arc);
  for (const double y : {word.at.y, word.at.y - 1.2 * word.size}) {
    const double x = needle.from.x * y / needle.from.y;
    EXPECT_LT(x, status.at.x - 15) << y;
    EXPECT_GT(x, word.at.x + 150) << y;
  }
}

TEST(Places, ClockAndBaseChangeSides) {
  for (const bool left : {false, true}) {
    const double side = left ? -1 : 1;
    EXPECT_EQ(dial::basePlace(left).at.x, -750 * side);
    EXPECT_EQ(dial::timePlace(left).at.x, 750 * side);
    const dial::ClockFace clock = dial::clockFace(left);
    EXPECT_EQ(clock.centre.x, 810 * side);
    EXPECT_LT(std::abs(clock.centre.x) + clock.radius, 1000);
    EXPECT_GT(radiusOf(clock.centre) - clock.radius, dial::kFaceRadius);
  }
}

TEST(Places, ClockHandsPointToTheTime) {
  const dial::ClockFace face{{0, 0}, 100};
  const dial::Line hour = dial::hourHand(face, 15, 30);
  EXPECT_NEAR(std::atan2(hour.to.x, hour.to.y) * 180 / 3.14159, 105, 0.01);
  const dial::Line minute = dial::minuteHand(face, 30);
  EXPECT_NEAR(minute.to.x, 0, 0.01);
  EXPECT_LT(minute.to.y, -70);
  EXPECT_EQ(dial::hourMarks(face).size(), 12U);
}

}  // namespace
}  // namespace qv3
