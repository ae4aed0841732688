#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <optional>

#include "display/geometry/dialplaces.h"
#include "display/geometry/knobgeometry.h"
#include "display/geometry/tints.h"
#include "display/geometry/windowlayout.h"

namespace qv3 {
namespace {

using dial::Face;

constexpr double kDegree = 3.14159 / 180;
constexpr int kLeft = 1;

double radiusOf(dial::Point p) {
  return std::hypot(p.x, p.y);
}

/// Degrees counter-clockwise from the +x axis.
double angleOf(dial::Point p) {
  return std::atan2(p.y, p.x) / kDegree;
}

void expectAt(dial::Point p, double x, double y, double off = 1e-9) {
  EXPECT_NEAR(p.x, x, off);
  EXPECT_NEAR(p.y, y, off);
}

// ---- Tints ----

TEST(Tints, ShadowMovesFromDialToNeedle) {
  const Colour face = pack({200, 10, 255});  // the blue channel has halves at odd weights
  const std::pair<int, Colour> rows[] = {{0, face},
                                         {1, pack({180, 34, 230})},  // 180.5, 229.5
                                         {2, pack({161, 58, 204})},
                                         {3, pack({132, 94, 166})},  // 131.75, 165.75
                                         {4, pack({93, 142, 115})},  // 92.75, 114.75
                                         {5, pack({5, 250, 0})},
                                         {-1, face},
                                         {6, face}};
  for (const auto& [index, expected] : rows) {
    EXPECT_EQ(ShadowNeedleColor(face, pack({5, 250, 0}), index), expected) << index;
  }
}

TEST(Tints, DialTintRoundsAndPanelTintTruncates) {
  EXPECT_EQ(DialNeedleTint(pack({255, 255, 255}), pack({255, 0, 2})), pack({255, 204, 204}));
  EXPECT_EQ(PanelTextTint(pack({0, 255, 100}), pack({255, 0, 104})), pack({51, 204, 100}));
  EXPECT_EQ(PanelTextTint(pack({44, 169, 153}), 0), pack({36, 136, 123}));
}

// ---- Dial ----

TEST(CAng, FoldsOneTurnAndAvoidsZero) {
  const float rows[][2] = {{0.0F, 0.00001F},   {-0.5F, 5.78318F}, {7.0F, 0.71682F},
                           {-7.0F, -0.71682F}, {3.0F, 3.0F},      {6.28318F, 6.28318F},
                           {14.0F, 7.71682F}};
  for (const auto& row : rows) EXPECT_NEAR(CAng(row[0]), row[1], 1e-6) << row[0];
}

void expectArcs(int scaleType, const std::vector<dial::Arc>& wanted) {
  const auto arcs = dial::scaleArcs(Face::Arc, scaleType);
  ASSERT_EQ(arcs.size(), wanted.size());
  for (std::size_t i = 0; i < arcs.size(); ++i) {
    EXPECT_EQ(arcs[i].radius, wanted[i].radius);
    EXPECT_NEAR(arcs[i].from / kDegree, wanted[i].from, 0.05) << i;
    EXPECT_NEAR(arcs[i].to / kDegree, wanted[i].to, 0.05) << i;
  }
}

TEST(ArcScale, FineOneHasLongAndShortTicksAndAGapForTheSetTickAndTheLamp) {
  const auto ticks = dial::scaleTicks(Face::Arc, 0);
  ASSERT_EQ(ticks.size(), 41U);
  for (std::size_t k = 0; k < ticks.size(); ++k) {
    EXPECT_NEAR(angleOf(ticks[k].from), 35 + 2.75 * static_cast<double>(k), 0.001) << k;
    EXPECT_NEAR(radiusOf(ticks[k].from), 1020, 1e-9) << k;
    EXPECT_NEAR(radiusOf(ticks[k].to), k % 2 == 0 ? 1070 : 1040, 1e-9) << k;
  }
  expectArcs(0, {{1020, 35, 101}, {1020, 106.5, 145}, {1070, 35, 101}, {1070, 106.5, 145}});
  const dial::Lamp lamp = dial::lamp(1, 1000);
  expectAt(lamp.at, -254.4, 1039.4, 0.1);
  EXPECT_NEAR(angleOf(lamp.at), angleOf(ticks[25].to), 0.01);
}

TEST(ArcScale, SimpleOneHasNineTicksTwoStubsAndTheSetMark) {
  const auto ticks = dial::scaleTicks(Face::Arc, 1);
  ASSERT_EQ(ticks.size(), 9U);
  for (std::size_t k = 0; k < ticks.size(); ++k) {
    EXPECT_NEAR(angleOf(ticks[k].to), 35 + 13.75 * static_cast<double>(k), 0.001);
    EXPECT_NEAR(radiusOf(ticks[k].to), 1050, 1e-9);
  }
  expectArcs(1, {{1020, 145, 147.75}, {1020, 32.25, 35}, {1020, 102.9, 104.6}});
}

TEST(RoundScale, TicksGoClockwiseFromTheTop) {
  struct Row {
    int scaleType;
    std::size_t count;
    double from, to;
    std::size_t arcs;
  };
  for (const Row& row : {Row{0, 40, 550, 575, 1}, Row{1, 16, 535, 560, 0}}) {
    const auto ticks = dial::scaleTicks(Face::Round, row.scaleType);
    ASSERT_EQ(ticks.size(), row.count);
    EXPECT_EQ(dial::scaleArcs(Face::Round, row.scaleType).size(), row.arcs);
    expectAt(ticks[0].from, 0, 600 + row.from);
    expectAt(ticks[0].to, 0, 600 + row.to);
    expectAt(ticks[row.count / 4].to, row.to, 600, 0.01);
  }
}

TEST(Needle, LiesAlongItsValue) {
  struct Row {
    int dialType;
    std::int32_t value;
    dial::Point from, to;
  };
  for (const Row& row :
       {Row{1, 0, {0, 500}, {0, 1000}}, Row{2, 16384, {500, 0}, {1000, 0}},
        Row{1, 10012, {409.6, 286.8}, {819.15, 573.6}},
        Row{1, -2503, {-118.8, 485.7}, {-237.7, 971.3}}, Row{0, 0, {0, 650}, {0, 1100}},
        Row{3, 16384, {50, 600}, {500, 600}}, Row{0, -32768, {0, 550}, {0, 100}}}) {
    SCOPED_TRACE(row.value);
    const dial::Line line = dial::needle(row.dialType, row.value);
    expectAt(line.from, row.from.x, row.from.y, 0.05);
    expectAt(line.to, row.to.x, row.to.y, 0.05);
  }
  const dial::Line arm = dial::oppositeArm(3, 0);
  expectAt(arm.from, 0, 550);
  expectAt(arm.to, 0, 100);
}

TEST(Needle, ItsShadowAppearsBeyondSixThousandAndStaysUntilFour) {
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

TEST(Needle, IsToldFromTheSetMark) {
  EXPECT_EQ(dial::percentFromSet(-2503), 0);
  EXPECT_EQ(dial::percentFromSet(10012), 62);
  EXPECT_EQ(dial::percentFromSet(-10012), -37);
  EXPECT_EQ(dial::degreesFromSet(16384), 90);
  EXPECT_EQ(dial::degreesFromSet(40000), -140);
}

TEST(Lamp, SitsAtTheHubOfTheRoundDial) {
  EXPECT_EQ(dial::lamp(0, 1049).at.y, 600);
  EXPECT_EQ(dial::lamp(0, 1049).diameter, 21);
  EXPECT_EQ(dial::lamp(2, 1049).diameter, 17);
}

TEST(PanelMap, FillsItsSurfaceAndKeepsItsShapeOnAnother) {
  const PanelMap map(1000, 625);
  expectAt(map.at({-1000, 1200}), 0, 0);
  expectAt(map.at({1000, -50}), 1000, 625);
  expectAt(map.at({0, 0}), 500, 600);
  const PanelMap wide(1200, 625);
  expectAt(wide.at({-1000, 1200}), 100, 0);
  EXPECT_NEAR(wide.width(), 1000, 1e-9);
  EXPECT_EQ(PanelMap(0, 10).units(5), 0);
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

TEST(Places, ClockAndBaseChangeSidesAndHandsPointToTheTime) {
  for (const bool left : {false, true}) {
    const double side = left ? -1 : 1;
    EXPECT_EQ(dial::basePlace(left).at.x, -750 * side);
    EXPECT_EQ(dial::timePlace(left).at.x, 750 * side);
    const dial::ClockFace clock = dial::clockFace(left);
    EXPECT_EQ(clock.centre.x, 810 * side);
    EXPECT_LT(std::abs(clock.centre.x) + clock.radius, 1000);
    EXPECT_GT(radiusOf(clock.centre) - clock.radius, dial::kFaceRadius);
  }
  const dial::ClockFace face{{0, 0}, 100};
  EXPECT_NEAR(angleOf(dial::hourHand(face, 15, 30).to), -15, 0.01);
  EXPECT_NEAR(angleOf(dial::minuteHand(face, 30).to), -90, 0.01);
  EXPECT_EQ(dial::hourMarks(face).size(), 12U);
}

// ---- Knob ----

TEST(Knob, MouseAsksForAnIndex) {
  constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    double x, y;
    int button;
    std::optional<int> index;
  };
  // 52.5, a tie, goes to the even neighbour; the negative x axis counts as angle 0.
  for (const Row& row :
       {Row{0.5, 0, kLeft, 52},       Row{-0.5, 0, kLeft, 52},     Row{-0.5, 0.001, kLeft, 11},
        Row{-0.5, -0.001, kLeft, 10}, Row{-0.5, 0.5, kLeft, 21},   Row{0.5, 0.5, kLeft, 42},
        Row{0.001, 0.9, kLeft, 32},   Row{0, 0.9, kLeft, {}},      Row{0, -0.9, kLeft, {}},
        Row{0, 0, kLeft, {}},         Row{-0.1, -0.9, kLeft, 0},   Row{0.1, -0.9, kLeft, 63},
        Row{-0.5, -0.499, kLeft, 0},  Row{0.5, -0.499, kLeft, 63}, Row{1.1, 1.1, kLeft, 42},
        Row{40, 40, kLeft, 42},       Row{0.5, 0.5, 0, {}},        Row{0.5, 0.5, 2, {}},
        Row{0.5, 0.5, 3, {}},         Row{kNowhere, 1, kLeft, {}}}) {
    EXPECT_EQ(knob::indexAt(row.x, row.y, row.button), row.index)
        << row.x << ", " << row.y << " button " << row.button;
  }
  for (int index = 0; index <= knob::kLastIndex; ++index) {
    const knob::Point at = knob::pointer(index).centre;
    EXPECT_EQ(knob::indexAt(at.x, at.y, kLeft), index);
  }
}

TEST(Knob, PointerTurnsClockwiseAndItsNotchFacesTheCentre) {
  const std::pair<int, double> rows[] = {{-5, 225}, {0, 225},  {21, 135},   {42, 45},
                                         {63, -45}, {64, -45}, {32767, -45}};
  for (const auto& [index, degrees] : rows) {
    EXPECT_NEAR(knob::pointerAngle(index), degrees * kDegree, 1e-9) << index;
    const knob::Arc disc = knob::pointer(index);
    const double notch = disc.from + disc.sweep + (6.28318 - disc.sweep) / 2;
    const knob::Point inside{disc.centre.x + 0.3 * std::cos(notch),
                             disc.centre.y + 0.3 * std::sin(notch)};
    EXPECT_NEAR(radiusOf(inside), 0.65 - 0.3, 1e-4) << index;
  }
}

TEST(Knob, TicksGoFromEndToEndOfTheRim) {
  const auto ticks = knob::ticks();
  EXPECT_NEAR(angleOf(ticks.front().from), -45, 1e-3);
  EXPECT_NEAR(angleOf(ticks.back().from), -135, 1e-3);
  for (const auto& tick : ticks) {
    EXPECT_NEAR(radiusOf(tick.from), 0.9, 1e-9);
    EXPECT_NEAR(radiusOf(tick.to), 0.7, 1e-9);
  }
  EXPECT_NEAR(knob::rim().from / kDegree, 315, 1e-3);
  EXPECT_NEAR(knob::rim().sweep / kDegree, 270, 1e-3);
}

// ---- Window ----

LayoutParts partsOf(int graph, bool recording) {
  return {graph != 0, graph, recording};
}

bool overlap(const LayoutRect& a, const LayoutRect& b) {
  return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

TEST(WindowLayout, StandardWindowAndOnesWithRoomToSpare) {
  const WindowLayout layout = layOutWindow(896, 662, partsOf(3, true));
  EXPECT_EQ(layout.picMeterPanel, (LayoutRect{0, 0, 734, 459}));
  EXPECT_EQ(layout.picBD, (LayoutRect{734, 0, 162, 59}));
  EXPECT_EQ(layout.picKnob, (LayoutRect{734, 59, 162, 162}));
  EXPECT_EQ(layout.picGraph, (LayoutRect{0, 459, 896, 120}));
  EXPECT_EQ(layout.recordingPanel, (LayoutRect{0, 579, 896, 83}));
  const WindowLayout tall = layOutWindow(896, 1662, partsOf(3, true));
  EXPECT_EQ(tall.picMeterPanel, (LayoutRect{0, 500, 734, 459}));
  EXPECT_EQ(tall.picGraph.y, 1459);
  const WindowLayout wide = layOutWindow(2000, 459, partsOf(0, false));
  EXPECT_EQ(wide.picMeterPanel, (LayoutRect{551, 0, 735, 459}));
  EXPECT_EQ(wide.picKnob.right(), 551 + 735 + 162);
}

TEST(WindowLayout, NaturalHeightLeavesNothingToSpare) {
  const struct {
    int width, graph;
    bool recording;
    int height;
  } rows[] = {{896, 0, false, 459},    {896, 3, true, 662},  {896, 5, false, 659},
              {896, -2, false, 459},   {1220, 1, true, 748}, {0, 0, false, 0},
              {-50, 1, true, 40 + 83}, {1, 0, false, 1},     {3840, 5, true, 1968 + 200 + 83}};
  for (const auto& row : rows) {
    EXPECT_EQ(naturalHeight(row.width, partsOf(row.graph, row.recording)), row.height) << row.width;
  }
  // A number of the settings file may be anything.
  EXPECT_GT(naturalHeight(INT_MAX, partsOf(INT_MAX, true)), 0);
  EXPECT_GE(layOutWindow(300, 200, partsOf(INT_MIN, true)).picMeterPanel.height, 100);
  for (int width = 200; width < 2600; width += 7) {
    const LayoutParts parts = partsOf(2, true);
    const WindowLayout layout = layOutWindow(width, naturalHeight(width, parts), parts);
    EXPECT_EQ(layout.picMeterPanel.y, 0);
    EXPECT_EQ(layout.picMeterPanel.bottom(), layout.picGraph.y);
    EXPECT_EQ(layout.picKnob.right(), width);
  }
}

void expectHoldsTogether(int width, int height, const LayoutParts& parts) {
  SCOPED_TRACE(testing::Message() << width << "x" << height << " " << parts.graphHeightIndex);
  const WindowLayout layout = layOutWindow(width, height, parts);
  const LayoutRect all[] = {layout.picMeterPanel, layout.picBD, layout.picKnob, layout.picGraph,
                            layout.recordingPanel};
  for (std::size_t i = 0; i < std::size(all); ++i) {
    EXPECT_GE(std::min({all[i].x, all[i].y, all[i].width, all[i].height}), 0);
    EXPECT_LE(all[i].right(), std::max(width, 0));
    EXPECT_LE(all[i].bottom(), std::max(height, 0));
    for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(overlap(all[i], all[j]));
  }
  EXPECT_LE(std::abs(all[0].height - all[0].width * 0.625), 0.5);
  EXPECT_EQ(layout.picKnob.width, layout.picKnob.height);
}

TEST(WindowLayout, HoldsTogetherAtAnySize) {
  const int sizes[] = {-7, 0, 1, 2, 3, 17, 83, 84, 120, 333, 640, 897, 1281, 4096, 20000};
  for (const int graph : {0, 1, 3, 5, 5000}) {
    for (const int width : sizes) {
      for (const int height : sizes) {
        expectHoldsTogether(width, height, partsOf(graph, false));
        expectHoldsTogether(width, height, partsOf(graph, true));
      }
    }
  }
}

}  // namespace
}  // namespace qv3
