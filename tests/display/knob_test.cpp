#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

#include "display/geometry/knobgeometry.h"

namespace qv3 {
namespace {

constexpr int kLeft = 1;

struct MouseRow {
  const char* name;
  double x;
  double y;
  int button;
  std::optional<int> index;
};

class KnobMouse : public testing::TestWithParam<MouseRow> {};

TEST_P(KnobMouse, AsksFor) {
  const MouseRow& row = GetParam();
  EXPECT_EQ(knob::indexAt(row.x, row.y, row.button), row.index);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, KnobMouse,
    testing::Values(
        // 52.5, a tie, goes to the even neighbour
        MouseRow{"right", 0.5, 0, kLeft, 52},
        // the negative x axis counts as angle 0
        MouseRow{"left", -0.5, 0, kLeft, 52}, MouseRow{"leftAbove", -0.5, 0.001, kLeft, 11},
        MouseRow{"leftBelow", -0.5, -0.001, kLeft, 10}, MouseRow{"upLeft", -0.5, 0.5, kLeft, 21},
        MouseRow{"upRight", 0.5, 0.5, kLeft, 42}, MouseRow{"almostTop", 0.001, 0.9, kLeft, 32},
        MouseRow{"top", 0, 0.9, kLeft, {}}, MouseRow{"bottom", 0, -0.9, kLeft, {}},
        MouseRow{"centre", 0, 0, kLeft, {}}, MouseRow{"gapLeft", -0.1, -0.9, kLeft, 0},
        MouseRow{"gapRight", 0.1, -0.9, kLeft, 63}, MouseRow{"leftEnd", -0.5, -0.499, kLeft, 0},
        MouseRow{"rightEnd", 0.5, -0.499, kLeft, 63}, MouseRow{"corner", 1.1, 1.1, kLeft, 42},
        MouseRow{"outside", 40, 40, kLeft, 42}, MouseRow{"noButton", 0.5, 0.5, 0, {}},
        MouseRow{"right button", 0.5, 0.5, 2, {}}, MouseRow{"both buttons", 0.5, 0.5, 3, {}},
        MouseRow{"noPlace", std::numeric_limits<double>::quiet_NaN(), 1, kLeft, {}}),
    [](const auto& row) {
      std::string name = row.param.name;
      std::erase(name, ' ');
      return name;
    });

TEST(Knob, MouseOnThePointerKeepsTheIndex) {
  for (int index = 0; index <= knob::kLastIndex; ++index) {
    const knob::Point at = knob::pointer(index).centre;
    EXPECT_EQ(knob::indexAt(at.x, at.y, kLeft), index);
  }
}

TEST(Knob, PointerTurnsClockwiseAndStopsAtItsEnds) {
  constexpr double kDegree = 3.14159 / 180;
  const std::pair<int, double> rows[] = {{-5, 225}, {0, 225},  {21, 135},   {42, 45},
                                         {63, -45}, {64, -45}, {32767, -45}};
  for (const auto& [index, degrees] : rows) {
    EXPECT_NEAR(knob::pointerAngle(index), degrees * kDegree, 1e-9) << index;
  }
}

TEST(Knob, NotchFacesTheCentre) {
  for (const int index : {0, 17, 63}) {
    const knob::Arc disc = knob::pointer(index);
    const double notch = disc.from + disc.sweep + (6.28318 - disc.sweep) / 2;
    const double towards = 0.65 - 0.3;
    EXPECT_NEAR(
        std::hypot(disc.centre.x + 0.3 * std::cos(notch), disc.centre.y + 0.3 * std::sin(notch)),
        towards, 1e-4)
        << index;
  }
}

TEST(Knob, TicksGoFromEndToEndOfTheRim) {
  const auto ticks = knob::ticks();
  EXPECT_NEAR(std::atan2(ticks.front().from.y, ticks.front().from.x), -0.785398, 1e-5);
  EXPECT_NEAR(std::atan2(ticks.back().from.y, ticks.back().from.x), -2.356194, 1e-5);
  for (const auto& tick : ticks) {
    EXPECT_NEAR(std::hypot(tick.from.x, tick.from.y), 0.9, 1e-9);
    EXPECT_NEAR(std::hypot(tick.to.x, tick.to.y), 0.7, 1e-9);
  }
  const knob::Arc rim = knob::rim();
  EXPECT_NEAR(rim.from * 180 / 3.14159, 315, 1e-3);
  EXPECT_NEAR(rim.sweep * 180 / 3.14159, 270, 1e-3);
}

TEST(Knob, SurfaceMapsBothWays) {
  const KnobSurface surface(220);
  const knob::Point corner = surface.toKnob({0, 220});
  EXPECT_NEAR(corner.x, -1.1, 1e-12);
  EXPECT_NEAR(corner.y, -1.1, 1e-12);
  const knob::Point back = surface.toDevice(surface.toKnob({17, 203}));
  EXPECT_NEAR(back.x, 17, 1e-9);
  EXPECT_NEAR(back.y, 203, 1e-9);
  const knob::Point nowhere = KnobSurface(0).toKnob({5, 5});
  EXPECT_EQ(knob::indexAt(nowhere.x, nowhere.y, kLeft), std::nullopt);
}

}  // namespace
}  // namespace qv3
