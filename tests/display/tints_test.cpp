#include "display/geometry/tints.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

struct ShadowRow {
  int index;
  Colour expected;
};

// Dial (200, 10, 255), needle (5, 250, 0): the blue channel has halves at odd weights.
class ShadowTint : public testing::TestWithParam<ShadowRow> {};

TEST_P(ShadowTint, MovesFromDialToNeedle) {
  EXPECT_EQ(ShadowNeedleColor(pack({200, 10, 255}), pack({5, 250, 0}), GetParam().index),
            GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Shades, ShadowTint,
                         testing::Values(ShadowRow{0, pack({200, 10, 255})},
                                         ShadowRow{1, pack({180, 34, 230})},  // 180.5, 229.5
                                         ShadowRow{2, pack({161, 58, 204})},
                                         ShadowRow{3, pack({132, 94, 166})},  // 131.75, 165.75
                                         ShadowRow{4, pack({93, 142, 115})},  // 92.75, 114.75
                                         ShadowRow{5, pack({5, 250, 0})},
                                         ShadowRow{-1, pack({200, 10, 255})},
                                         ShadowRow{6, pack({200, 10, 255})}));

TEST(Tints, DialTintRoundsAndPanelTintTruncates) {
  EXPECT_EQ(DialNeedleTint(pack({255, 255, 255}), pack({255, 0, 2})), pack({255, 204, 204}));
  EXPECT_EQ(PanelTextTint(pack({0, 255, 100}), pack({255, 0, 104})), pack({51, 204, 100}));
  EXPECT_EQ(PanelTextTint(pack({44, 169, 153}), 0), pack({36, 136, 123}));
}

}  // namespace
}  // namespace qv3
