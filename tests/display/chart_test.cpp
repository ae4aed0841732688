#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

struct LineRow {
  const char* name;
  Points points;
};

void PrintTo(const LineRow& row, std::ostream* out) {
  *out << row.name;
}

class PenLineShape : public testing::TestWithParam<LineRow> {};

TEST_P(PenLineShape, CoversItsArea) {
  constexpr int kWidth = 70;
  constexpr int kHeight = 50;
  for (const double pen : {1.0, 2.0, 3.0, 4.5, 9.0}) {
    PenLine line;
    line.resize(kWidth, kHeight);
    line.draw(GetParam().points, pen);
    double area = 0;
    double covered = 0;
    double worst = 0;
    for (int column = 0; column < kWidth; ++column) {
      for (int row = 0; row < kHeight; ++row) {
        const double wanted = coveredArea(GetParam().points, pen, column, row);
        const double got = coverageAt(line, column, row) / 255.0;
        area += wanted;
        covered += got;
        worst = std::max(worst, std::fabs(wanted - got));
      }
    }
    EXPECT_NEAR(covered, area, area * 0.04) << pen;
    EXPECT_LT(worst, 0.5) << pen;  // a flat end is cut between pixels
  }
}

Points wave(double step, double height) {
  Points points;
  for (double x = 0; x <= 70; x += step) points.push_back({x, 25 + height * std::sin(x / 5)});
  return points;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, PenLineShape,
    testing::Values(LineRow{"level", {{0, 20.5}, {30, 20.5}, {70, 20.5}}},
                    LineRow{"slope", {{2, 8}, {66, 41}}}, LineRow{"steep", {{20, 3}, {26, 47}}},
                    LineRow{"upright", {{30, 5}, {30, 45}}},
                    LineRow{"peak", {{10, 44}, {30, 12}, {36, 44}, {60, 30}}},
                    LineRow{"spike", {{10, 40}, {30, 40}, {33, 8}, {36, 40}, {60, 40}}},
                    LineRow{"step", {{10, 40}, {30, 40}, {30, 10}, {60, 10}}},
                    LineRow{"bends", wave(6.4, 6)}, LineRow{"swings", wave(6.4, 20)},
                    LineRow{"dense", wave(0.7, 15)},
                    LineRow{"leaves", {{0, 25}, {20, -30}, {40, 90}, {69, 25}}},
                    LineRow{"alongTheEdge", {{0, 0}, {35, 1}, {70, 49.5}}}),
    [](const auto& row) { return row.param.name; });

TEST(PenLine, PointsThatRepeatAddNothing) {
  PenLine once;
  once.resize(70, 30);
  once.draw({{5, 10}, {40, 20}, {60, 12}}, 3);
  PenLine twice;
  twice.resize(70, 30);
  twice.draw({{5, 10}, {5, 10}, {40, 20}, {40, 20}, {60, 12}, {60, 12}}, 3);
  for (int column = 0; column < 70; ++column) {
    for (int row = 0; row < 30; ++row) {
      EXPECT_EQ(coverageAt(once, column, row), coverageAt(twice, column, row));
    }
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

void PrintTo(const PictureRow& row, std::ostream* out) {
  *out << row.name;
}

class ChartRedraw : public testing::TestWithParam<PictureRow> {};

/// A picture that has followed the trace is the one drawn on a new sheet, and what it says has
/// changed is all that has.
TEST_P(ChartRedraw, LeavesNoTraceOfTheLineBefore) {
  constexpr int kWidth = 331;
  constexpr int kHeight = 57;
  const PictureRow& row = GetParam();
  const int width = int(std::ceil(kWidth * row.ratio));
  const int height = int(std::ceil(kHeight * row.ratio));
  GraphTrace trace;
  trace.resizeSurface(kWidth);
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

INSTANTIATE_TEST_SUITE_P(Rows, ChartRedraw,
                         testing::Values(PictureRow{"plain", 1, false, 2, 100},
                                         PictureRow{"gridded", 1, true, 1, 100},
                                         PictureRow{"noisy", 1, true, 3, 30000},
                                         PictureRow{"fraction", 1.5, true, 2, 1000},
                                         PictureRow{"fine", 2, false, 3, 1000},
                                         PictureRow{"huge", 1, true, 1000, 60000},
                                         PictureRow{"penless", 1, true, 0, 100}),
                         [](const auto& row) { return row.param.name; });

/// Where every pixel of a row or column has this colour.
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

}  // namespace
}  // namespace qv3
