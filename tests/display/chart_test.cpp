#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "display/geometry/chartpicture.h"

namespace qv3 {
namespace {

using Points = std::vector<PenLine::Point>;

// ---- The pen line, against the area that its outline covers ----

double distanceTo(const PenLine::Point& a, const PenLine::Point& b, double x, double y, bool first,
                  bool last) {
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  const double cosine = (b.x - a.x) / length;
  const double sine = (b.y - a.y) / length;
  const double along = (x - a.x) * cosine + (y - a.y) * sine;
  if ((first && along < 0) || (last && along > length)) return 1e9;  // a flat end
  if (along < 0) return std::hypot(x - a.x, y - a.y);
  if (along > length) return std::hypot(x - b.x, y - b.y);
  return std::fabs((y - a.y) * cosine - (x - a.x) * sine);
}

double coveredArea(const Points& points, double penWidth, int column, int row) {
  constexpr int kGrid = 8;
  int inside = 0;
  for (int i = 0; i < kGrid * kGrid; ++i) {
    const double x = column + (i % kGrid + 0.5) / kGrid;
    const double y = row + (i / kGrid + 0.5) / kGrid;
    double nearest = 1e9;
    for (std::size_t p = 1; p < points.size(); ++p) {
      const bool last = p + 1 == points.size();
      nearest = std::min(nearest, distanceTo(points[p - 1], points[p], x, y, p == 1, last));
    }
    inside += nearest <= penWidth / 2 ? 1 : 0;
  }
  return inside / double(kGrid * kGrid);
}

int coverageAt(const PenLine& line, int column, int row) {
  const PenLine::Rows rows = line.rows()[static_cast<std::size_t>(column)];
  return row >= rows.first && row < rows.last ? line.coverage(column)[row] : 0;
}

constexpr int kWidth = 70;
constexpr int kHeight = 50;

void expectCovers(const Points& points, double pen) {
  PenLine line;
  line.resize(kWidth, kHeight);
  line.draw(points, pen);
  double area = 0;
  double covered = 0;
  double worst = 0;
  for (int column = 0; column < kWidth; ++column) {
    for (int row = 0; row < kHeight; ++row) {
      const double wanted = coveredArea(points, pen, column, row);
      const double got = coverageAt(line, column, row) / 255.0;
      area += wanted;
      covered += got;
      worst = std::max(worst, std::fabs(wanted - got));
    }
  }
  EXPECT_NEAR(covered, area, area * 0.04) << pen;
  EXPECT_LT(worst, 0.5) << pen;  // a flat end is cut between pixels
}

Points wave(double step, double height) {
  Points points;
  for (double x = 0; x <= kWidth; x += step) points.push_back({x, 25 + height * std::sin(x / 5)});
  return points;
}

TEST(PenLine, CoversItsArea) {
  const std::pair<const char*, Points> rows[] = {
      {"level", {{0, 20.5}, {30, 20.5}, {70, 20.5}}},
      {"slope", {{2, 8}, {66, 41}}},
      {"steep", {{20, 3}, {26, 47}}},
      {"upright", {{30, 5}, {30, 45}}},
      {"peak", {{10, 44}, {30, 12}, {36, 44}, {60, 30}}},
      {"spike", {{10, 40}, {30, 40}, {33, 8}, {36, 40}, {60, 40}}},
      {"step", {{10, 40}, {30, 40}, {30, 10}, {60, 10}}},
      {"bends", wave(6.4, 6)},
      {"swings", wave(6.4, 20)},
      {"dense", wave(0.7, 15)},
      {"leaves", {{0, 25}, {20, -30}, {40, 90}, {69, 25}}},
      {"along the edge", {{0, 0}, {35, 1}, {70, 49.5}}}};
  for (const auto& [name, points] : rows) {
    SCOPED_TRACE(name);
    for (const double pen : {1.0, 2.0, 3.0, 4.5, 9.0}) expectCovers(points, pen);
  }
}

TEST(PenLine, PointsThatRepeatAddNothing) {
  PenLine once;
  PenLine twice;
  once.resize(kWidth, kHeight);
  twice.resize(kWidth, kHeight);
  once.draw({{5, 10}, {40, 20}, {60, 12}}, 3);
  twice.draw({{5, 10}, {5, 10}, {40, 20}, {40, 20}, {60, 12}, {60, 12}}, 3);
  for (int i = 0; i < kWidth * kHeight; ++i) {
    EXPECT_EQ(coverageAt(once, i % kWidth, i / kWidth), coverageAt(twice, i % kWidth, i / kWidth));
  }
}

TEST(PenLine, StaysOnTheSheetWhateverThePoints) {
  PenLine line;
  line.resize(40, 5);
  line.draw({{-1e7, 3}, {0, -2e9}, {6, 2e9}, {6, -2e9}, {12.5, 2.5}, {1e7, 1e9}}, 1e9);
  EXPECT_EQ(coverageAt(line, 12, 2), 255);
  for (const auto& rows : line.rows()) {
    EXPECT_GE(rows.first, 0);
    EXPECT_LE(rows.last, 5);
  }
  line.resize(0, -4);
  line.draw({{0, 0}, {5, 5}}, 2);
  EXPECT_EQ(line.height(), 0);
}

// ---- The whole picture ----

ChartLook look(bool grid, int penWidth = 2) {
  ChartLook look;
  look.sheet = 0xffeff2b5;
  look.pen = 0xff102030;
  look.grid = 0xffc0c0c0;
  look.penWidth = penWidth;
  look.gridX = look.gridY = grid;
  return look;
}

std::vector<std::uint32_t> pixelsOf(const ChartPicture& picture) {
  return {picture.pixels(), picture.pixels() + picture.width() * picture.height()};
}

struct PictureRow {
  const char* name;
  double ratio;
  bool grid;
  int penWidth;
  int noise;
};

void expectNoTrace(const PictureRow& row) {
  constexpr int kSurface = 331;
  const int width = int(std::ceil(kSurface * row.ratio));
  const int height = int(std::ceil(57 * row.ratio));
  GraphTrace trace;
  trace.resizeSurface(kSurface);
  ChartPicture kept;
  kept.resize(width, height, row.ratio);
  kept.setLook(look(row.grid, row.penWidth));
  std::minstd_rand random(7);
  std::vector<std::uint32_t> before(static_cast<std::size_t>(width * height), 0);
  for (int i = 0; i < 900; ++i) {
    const int value = 33000 + int(8000 * std::sin(i * 0.04)) + int(random()) % (row.noise + 1);
    if (!trace.Update_Graph(value, i / 500, i < 500 ? 1.0F : 1.2F, false)) continue;
    const PenLine::Rows changed = kept.draw(trace);
    const auto now = pixelsOf(kept);
    for (int y = 0; y < height; ++y) {
      if (y >= changed.first && y < changed.last) continue;
      const auto line = before.begin() + y * width;
      ASSERT_TRUE(std::equal(line, line + width, now.begin() + y * width)) << i << " row " << y;
    }
    before = now;
    if (i % 37 != 0) continue;
    ChartPicture fresh;
    fresh.setLook(look(row.grid, row.penWidth));
    fresh.resize(width, height, row.ratio);
    fresh.draw(trace);
    ASSERT_EQ(pixelsOf(fresh), now) << i;
  }
}

/// A picture that has followed the trace is the one drawn on a new sheet, and what it says has
/// changed is all that has.
TEST(ChartPicture, LeavesNoTraceOfTheLineBefore) {
  for (const PictureRow& row :
       {PictureRow{"plain", 1, false, 2, 100}, PictureRow{"gridded", 1, true, 1, 100},
        PictureRow{"noisy", 1, true, 3, 30000}, PictureRow{"fraction", 1.5, true, 2, 1000},
        PictureRow{"fine", 2, false, 3, 1000}, PictureRow{"huge", 1, true, 1000, 60000},
        PictureRow{"penless", 1, true, 0, 100}}) {
    SCOPED_TRACE(row.name);
    expectNoTrace(row);
  }
}

/// Where a row, or a column, has this colour.
std::vector<int> columnsOf(const ChartPicture& picture, int row, std::uint32_t colour) {
  std::vector<int> found;
  for (int x = 0; x < picture.width(); ++x) {
    if (picture.pixels()[row * picture.width() + x] == colour) found.push_back(x);
  }
  return found;
}
std::vector<int> rowsOf(const ChartPicture& picture, int column, std::uint32_t colour) {
  std::vector<int> found;
  for (int y = 0; y < picture.height(); ++y) {
    if (picture.pixels()[y * picture.width() + column] == colour) found.push_back(y);
  }
  return found;
}

TEST(ChartPicture, GridIsSharpAndMovesWithThePaper) {
  GraphTrace trace;
  trace.resizeSurface(199);
  ChartPicture picture;
  picture.setLook(look(true, 0));
  picture.resize(398, 700, 2);
  picture.draw(trace);
  // Levels 65536/7 x j of 65900, two pixels each.
  EXPECT_EQ(rowsOf(picture, 5, 0xffc0c0c0),
            (std::vector<int>{102, 103, 202, 203, 301, 302, 401, 402, 500, 501, 600, 601}));
  const std::vector<int> before = columnsOf(picture, 50, 0xffc0c0c0);
  ASSERT_EQ(before.size(), 18U) << "the tenth line is beyond the right edge";
  EXPECT_EQ(before[0], 38);
  EXPECT_EQ(before[1], 39);
  EXPECT_EQ(rowsOf(picture, 38, 0xffeff2b5).size(), 4U) << "the line ends below the sheet's top";
  trace.Update_Graph(1, 0, 1, true);
  trace.Update_Graph(1, 0, 1, true);
  picture.draw(trace);
  EXPECT_EQ(columnsOf(picture, 50, 0xffc0c0c0)[0], 36);
}

TEST(ChartPicture, DrawsOnlyColumnsInUse) {
  GraphTrace trace;
  trace.resizeSurface(398);
  for (int i = 0; i < 40; ++i) trace.Update_Graph(20000, 0, 0.5F, true);
  ChartPicture picture;
  picture.setLook(look(false));
  picture.resize(398, 100, 1);
  picture.draw(trace);
  for (int column = 0; column < 398; ++column) {
    const auto bare = rowsOf(picture, column, 0xffeff2b5).size();
    // twenty columns: from the nineteenth before the right edge on
    if (column < 360) {
      EXPECT_EQ(bare, 100U) << column;
    } else {
      EXPECT_GE(rowsOf(picture, column, 0xff102030).size(), 1U) << column;
      EXPECT_GE(bare, 97U) << column;
    }
  }
}

// ---- The trace ----

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
  const std::pair<bool, int> rows[] = {{true, 0}, {true, 1}, {false, 1}, {true, 2}};
  std::int32_t value = 0;
  for (const auto& [changed, used] : rows) {
    EXPECT_EQ(trace.Update_Graph(value += 100, 0, kHalf, true), changed) << value;
    EXPECT_EQ(usedColumns(trace), used) << value;
  }
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
  // The knob of a sample that is dropped is not seen.
  trace.Update_Graph(1000, 9, 2.5F, true);
  trace.Update_Graph(1500, 63, 2.5F, true);
  EXPECT_EQ(newest(trace), 7500);
}

TEST(GraphTrace, RecentresInStepsAndKeepsItsOffsetWhileTheTraceIsOnTheSheet) {
  const std::pair<std::int32_t, std::int32_t> rows[] = {
      {1000, 0},      {999, -5000},    {64537, 0}, {64538, 5000},    {69537, 5000},
      {69538, 10000}, {100000, 40000}, {0, -5000}, {-20000, -25000}, {65536, 5000}};
  for (const auto& [value, offset] : rows) {
    GraphTrace trace;
    plot(trace, value);
    EXPECT_EQ(trace.state().GraphOffset, offset) << value;
  }
  GraphTrace trace;
  const std::pair<std::int32_t, std::int32_t> then[] = {
      {100000, 40000}, {42000, 40000}, {40999, 35000}};
  for (const auto& [value, offset] : then) {
    plot(trace, value);
    EXPECT_EQ(trace.state().GraphOffset, offset) << value;
  }
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
