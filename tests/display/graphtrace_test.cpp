#include <gtest/gtest.h>

#include <limits>

#include "display/geometry/graphtrace.h"

namespace qv3 {
namespace {

constexpr float kHalf = 0.5F;  ///< a gain at which a stored value is the sample's

/// Two samples: the first one is dropped, the second one plotted.
void plot(GraphTrace& trace, std::int32_t value, int row = 0, float gain = kHalf) {
  trace.Update_Graph(value, row, gain, true);
  trace.Update_Graph(value, row, gain, true);
}

std::int32_t newest(const GraphTrace& trace) {
  return trace.state().GraphPoints[static_cast<std::size_t>(trace.state().WriteIndex)].value;
}

int usedColumns(const GraphTrace& trace) {
  int used = 0;
  for (int age = 0; age < kGraphColumns; ++age) used += trace.pointAt(age) ? 1 : 0;
  return used;
}

TEST(GraphTrace, PlotsEverySecondSample) {
  GraphTrace trace;
  // The first one only clears the sheet.
  EXPECT_TRUE(trace.Update_Graph(100, 0, kHalf, true));
  EXPECT_EQ(usedColumns(trace), 0);
  EXPECT_TRUE(trace.Update_Graph(200, 0, kHalf, true));
  EXPECT_FALSE(trace.Update_Graph(300, 0, kHalf, true));
  EXPECT_TRUE(trace.Update_Graph(400, 0, kHalf, true));
  EXPECT_EQ(usedColumns(trace), 2);
  EXPECT_EQ(newest(trace), 400);
  EXPECT_EQ(trace.state().WriteIndex, 2);
}

TEST(GraphTrace, IsUpsideDownUnlessInverted) {
  GraphTrace trace;
  for (const bool invert : {false, true}) {
    trace.Update_Graph(30000, 0, 1.2F, invert);
    trace.Update_Graph(30000, 0, 1.2F, invert);
    // twice the value times the gain, whose single-precision value counts
    EXPECT_EQ(newest(trace), invert ? 72000 : 85286);
  }
}

TEST(GraphTrace, SpansFourHundredSamplesAndDropsTheOldest) {
  GraphTrace trace;
  trace.resizeSurface(1280);
  for (int i = 1; i <= 400; ++i) trace.Update_Graph(10000 + i, 0, kHalf, true);
  ASSERT_EQ(usedColumns(trace), kGraphColumns);
  EXPECT_EQ(trace.pointAt(0)->y, 10002);
  EXPECT_EQ(trace.pointAt(199)->y, 10400);
  plot(trace, 20000);
  EXPECT_EQ(trace.pointAt(0)->y, 10004);
  EXPECT_EQ(trace.pointAt(199)->y, 20000);
}

TEST(GraphTrace, PlacesColumnsByAgeAndGridByRing) {
  GraphTrace trace;
  trace.resizeSurface(1280);
  plot(trace, 5000);
  EXPECT_EQ(usedColumns(trace), 1);
  ASSERT_TRUE(trace.pointAt(199));
  EXPECT_EQ(trace.pointAt(199)->x, 1280);
  plot(trace, 5000);
  EXPECT_EQ(trace.pointAt(198)->x, 1273);
  EXPECT_EQ(trace.state().ColumnWidth, 6);
  // The newest column is ring index 2, so the line of column 0 stands two columns to its left.
  EXPECT_TRUE(trace.state().GridColumn[static_cast<std::size_t>(trace.ringIndex(197))]);
  plot(trace, 5000);
  EXPECT_TRUE(trace.state().GridColumn[static_cast<std::size_t>(trace.ringIndex(196))]);
  EXPECT_EQ(trace.state().GridLevel,
            (std::array<std::int32_t, 6>{9362, 18725, 28087, 37449, 46811, 56174}));
}

TEST(GraphTrace, TurningTheKnobRescalesAndPlotsNothing) {
  GraphTrace trace;
  plot(trace, 1000, 0, 1.0F);
  plot(trace, 2001, 0, 1.0F);
  const int before = trace.state().WriteIndex;
  plot(trace, 60000, 7, 2.5F);
  EXPECT_EQ(trace.state().WriteIndex, before);
  EXPECT_EQ(usedColumns(trace), 2);
  EXPECT_EQ(newest(trace), 10005);
  plot(trace, 3000, 7, 2.5F);
  EXPECT_EQ(newest(trace), 15000);
  EXPECT_EQ(trace.pointAt(197)->y, 5000);
  // A position beyond the table is its last row: no other row, so nothing is rescaled.
  plot(trace, 3000, 63, 2.5F);
  plot(trace, 4000, 999, 2.5F);
  EXPECT_EQ(newest(trace), 20000);
}

TEST(GraphTrace, KnobOfADroppedSampleIsNotSeen) {
  GraphTrace trace;
  plot(trace, 1000, 0, 1.0F);
  trace.Update_Graph(1000, 9, 2.5F, true);
  trace.Update_Graph(1500, 0, 1.0F, true);
  EXPECT_EQ(newest(trace), 3000);
}

TEST(GraphTrace, RecentresInSteps) {
  const struct {
    std::int32_t value;
    std::int32_t offset;
  } rows[] = {{1000, 0},      {999, -5000},    {64537, 0}, {64538, 5000},    {69537, 5000},
              {69538, 10000}, {100000, 40000}, {0, -5000}, {-20000, -25000}, {65536, 5000}};
  for (const auto& row : rows) {
    GraphTrace trace;
    plot(trace, row.value);
    EXPECT_EQ(trace.state().GraphOffset, row.offset) << row.value;
  }
}

TEST(GraphTrace, OffsetIsKeptWhileTheTraceIsOnTheSheet) {
  GraphTrace trace;
  plot(trace, 100000);
  plot(trace, 42000);
  EXPECT_EQ(trace.state().GraphOffset, 40000);
  plot(trace, 40999);
  EXPECT_EQ(trace.state().GraphOffset, 35000);
}

TEST(GraphTrace, RebuildClearsColumnsAndNothingElse) {
  GraphTrace trace;
  trace.resizeSurface(900);
  for (int i = 0; i < 7; ++i) trace.Update_Graph(100000, 0, kHalf, true);
  trace.resizeSurface(450);
  EXPECT_EQ(usedColumns(trace), 3) << "until the next sample";
  EXPECT_TRUE(trace.Update_Graph(100000, 0, kHalf, true));
  EXPECT_FALSE(trace.state().GraphRebuild);
  EXPECT_EQ(trace.state().GraphOffset, 40000);
  EXPECT_EQ(trace.state().WriteIndex, 4) << "the eighth sample is plotted, after the rebuild";
  EXPECT_EQ(usedColumns(trace), 1);
  EXPECT_EQ(trace.state().ColumnWidth, 2);
}

TEST(GraphTrace, TakesAnyValue) {
  constexpr auto kLow = std::numeric_limits<std::int32_t>::min();
  constexpr auto kHigh = std::numeric_limits<std::int32_t>::max();
  constexpr auto kNan = std::numeric_limits<float>::quiet_NaN();
  GraphTrace trace;
  trace.resizeSurface(kHigh);
  int row = 0;
  for (const float gain : {40.0F, 0.0F, -1.0F, kNan, 1e30F, 1.0F}) {
    for (const std::int32_t value : {kLow, kHigh, kLow, 0, kHigh}) {
      for (const bool invert : {false, true}) {
        trace.Update_Graph(value, row, gain, invert);
        trace.Update_Graph(value, ++row % 70, gain, invert);
        trace.Update_Graph(value, row % 70, gain, invert);
        trace.Update_Graph(value, row % 70, gain, invert);
        const auto point = trace.pointAt(kGraphColumns - 1);
        ASSERT_TRUE(point);
        EXPECT_GE(point->y, GraphTrace::kBandLow);
        EXPECT_LE(point->y, GraphTrace::kBandHigh);
      }
    }
  }
  trace.resizeSurface(-3);
  EXPECT_EQ(trace.state().x[199], 0);
}

}  // namespace
}  // namespace qv3
