#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <vector>

#include "display/geometry/windowlayout.h"

namespace qv3 {
namespace {

LayoutParts partsOf(int graph, bool recording) {
  LayoutParts parts;
  parts.graphVisible = graph != 0;
  parts.graphHeightIndex = graph;
  parts.recordingVisible = recording;
  return parts;
}

std::vector<LayoutRect> surfaces(const WindowLayout& layout) {
  return {layout.picMeterPanel, layout.picBD, layout.picKnob, layout.picGraph,
          layout.recordingPanel};
}

bool overlap(const LayoutRect& a, const LayoutRect& b) {
  return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

TEST(WindowLayout, StandardWindow) {
  const LayoutParts parts = partsOf(3, true);
  EXPECT_EQ(naturalHeight(896, parts), 459 + 120 + 83);
  const WindowLayout layout = layOutWindow(896, 662, parts);
  EXPECT_EQ(layout.picMeterPanel, (LayoutRect{0, 0, 734, 459}));
  EXPECT_EQ(layout.picBD, (LayoutRect{734, 0, 162, 59}));
  EXPECT_EQ(layout.picKnob, (LayoutRect{734, 59, 162, 162}));
  EXPECT_EQ(layout.picGraph, (LayoutRect{0, 459, 896, 120}));
  EXPECT_EQ(layout.recordingPanel, (LayoutRect{0, 579, 896, 83}));
}

TEST(WindowLayout, InstrumentStandsInTheMiddleOfSpareRoom) {
  const WindowLayout tall = layOutWindow(896, 1662, partsOf(3, true));
  EXPECT_EQ(tall.picMeterPanel, (LayoutRect{0, 500, 734, 459}));
  EXPECT_EQ(tall.picGraph.y, 1459);
  const WindowLayout wide = layOutWindow(2000, 459, partsOf(0, false));
  EXPECT_EQ(wide.picMeterPanel, (LayoutRect{551, 0, 735, 459}));
  EXPECT_EQ(wide.picKnob.right(), 551 + 735 + 162);
}

TEST(WindowLayout, NaturalHeight) {
  const struct {
    int width;
    int graph;
    bool recording;
    int height;
  } rows[] = {{896, 0, false, 459},    {896, 0, true, 542},  {896, 5, false, 659},
              {896, -2, false, 459},   {1220, 1, true, 748}, {0, 0, false, 0},
              {-50, 1, true, 40 + 83}, {1, 0, false, 1},     {3840, 5, true, 1968 + 200 + 83}};
  for (const auto& row : rows) {
    EXPECT_EQ(naturalHeight(row.width, partsOf(row.graph, row.recording)), row.height) << row.width;
  }
  // A number of the settings file may be anything.
  EXPECT_GT(naturalHeight(INT_MAX, partsOf(INT_MAX, true)), 0);
  EXPECT_GE(layOutWindow(300, 200, partsOf(INT_MIN, true)).picMeterPanel.height, 100);
}

TEST(WindowLayout, HoldsTogetherAtAnySize) {
  const int sizes[] = {-7, 0, 1, 2, 3, 17, 83, 84, 120, 333, 640, 897, 1281, 4096, 20000};
  for (const int graph : {0, 1, 3, 5, 5000}) {
    for (const bool recording : {false, true}) {
      for (const int width : sizes) {
        for (const int height : sizes) {
          const WindowLayout layout = layOutWindow(width, height, partsOf(graph, recording));
          const auto all = surfaces(layout);
          SCOPED_TRACE(testing::Message() << width << "x" << height << " graph " << graph);
          for (std::size_t i = 0; i < all.size(); ++i) {
            EXPECT_GE(std::min({all[i].x, all[i].y, all[i].width, all[i].height}), 0);
            EXPECT_LE(all[i].right(), std::max(width, 0));
            EXPECT_LE(all[i].bottom(), std::max(height, 0));
            for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(overlap(all[i], all[j]));
          }
          const LayoutRect& meter = layout.picMeterPanel;
          EXPECT_LE(std::abs(meter.height - meter.width * 0.625), 0.5);
          EXPECT_EQ(layout.picKnob.width, layout.picKnob.height);
        }
      }
    }
  }
}

TEST(WindowLayout, NaturalHeightLeavesNothingToSpare) {
  for (int width = 200; width < 2600; width += 7) {
    const LayoutParts parts = partsOf(2, true);
    const WindowLayout layout = layOutWindow(width, naturalHeight(width, parts), parts);
    EXPECT_EQ(layout.picMeterPanel.y, 0);
    EXPECT_EQ(layout.picMeterPanel.bottom(), layout.picGraph.y);
    EXPECT_EQ(layout.picKnob.right(), width);
  }
}

}  // namespace
}  // namespace qv3
