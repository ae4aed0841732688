#include "display/geometry/ink.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace qv3 {
namespace {

constexpr std::uint32_t kPaper = 0xffffffff;
constexpr std::uint32_t kInk = 0xff000000;
constexpr std::uint32_t kBlue = 0xff0000ff;

class Sheet {
 public:
  static constexpr int kSide = 200;

  PixelArea area(PixelRect rect = {0, 0, kSide, kSide}) {
    return {m_pixels.data() + rect.y * kSide + rect.x, kSide, rect};
  }
  std::uint32_t at(int x, int y) const { return m_pixels[static_cast<std::size_t>(y * kSide + x)]; }
  double inked() const {
    double sum = 0;
    for (const std::uint32_t pixel : m_pixels) sum += (255.0 - (pixel & 0xff)) / 255;
    return sum;
  }
  bool operator==(const Sheet&) const = default;

 private:
  std::vector<std::uint32_t> m_pixels = std::vector<std::uint32_t>(kSide * kSide, kPaper);
};

Stroke strokeAt(double degrees, double width, double from = 20, double to = 85) {
  const double a = degrees * std::numbers::pi / 180;
  return {{{100.3 + from * std::sin(a), 99.8 - from * std::cos(a)},
           {100.3 + to * std::sin(a), 99.8 - to * std::cos(a)}},
          width};
}

/// Every direction, at widths of all ratios and menu entries.
template <typename Check>
void forStrokes(Check check) {
  for (const double width : {1.0, 1.5, 2.0, 4.0, 8.0, 16.0}) {
    for (double degrees = 0; degrees < 360; degrees += 7.5) check(strokeAt(degrees, width));
    for (const double degrees : {89.9, 90.5, 91.2, 270.1}) check(strokeAt(degrees, width));
  }
}

TEST(Ink, StrokeHasItsAreaInPartsTooAndIsWipedWhole) {
  forStrokes([](const Stroke& stroke) {
    Sheet sheet;
    inkStroke(sheet.area(), stroke, kPaper);
    EXPECT_EQ(sheet, Sheet()) << "its own colour changes nothing";
    inkStroke(sheet.area(), stroke, kInk);
    // An edge at 45 degrees is sampled less than a sixteenth of a pixel too far out or in.
    EXPECT_NEAR(sheet.inked(), 65 * stroke.width, 2 * 65 / 16.0);
    Sheet parts;
    for (int y = 0; y < Sheet::kSide; y += 50) {
      inkStroke(parts.area({0, y, 77, 50}), stroke, kInk);
      inkStroke(parts.area({77, y, Sheet::kSide - 77, 50}), stroke, kInk);
    }
    EXPECT_EQ(sheet, parts);
    wipeStroke(sheet.area(), stroke, kPaper);
    EXPECT_EQ(sheet, Sheet());
  });
}

TEST(Ink, EdgesAreSharpOnPixelBordersAndSoftBetween) {
  struct Row {
    int x, y;
    std::uint32_t colour;
  };
  Sheet upright;
  inkStroke(upright.area(), {{{50, 20}, {50, 60}}, 4}, kBlue);
  for (const Row& row :
       {Row{47, 40, kPaper}, Row{48, 40, kBlue}, Row{51, 40, kBlue}, Row{52, 40, kPaper},
        Row{50, 19, kPaper}, Row{50, 20, kBlue}, Row{50, 59, kBlue}, Row{50, 60, kPaper}}) {
    EXPECT_EQ(upright.at(row.x, row.y), row.colour) << row.x << " " << row.y;
  }
  Sheet level;
  inkStroke(level.area(), {{{20, 50.5}, {60, 50.5}}, 2}, kBlue);
  for (const Row& row : {Row{40, 50, kBlue}, Row{40, 49, 0xff7f7fff}, Row{40, 51, 0xff7f7fff}}) {
    EXPECT_EQ(level.at(row.x, row.y), row.colour) << row.y;
  }
}

TEST(Ink, DotIsRound) {
  Sheet sheet;
  inkDot(sheet.area(), {{100, 100}, 21}, kInk);
  EXPECT_NEAR(sheet.inked(), std::numbers::pi * 10.5 * 10.5, 2);
  EXPECT_EQ(sheet.at(100, 100), kInk);
  EXPECT_EQ(sheet.at(89, 89), kPaper);
  EXPECT_EQ(sheet.at(90, 99), sheet.at(99, 90));
}

TEST(LineCover, HoldsEveryPixelOfItsStrokes) {
  forStrokes([](const Stroke& stroke) {
    const std::vector<Stroke> strokes{stroke, strokeAt(200, stroke.width)};
    Sheet sheet;
    for (const Stroke& each : strokes) inkStroke(sheet.area(), each, kInk);
    for (const PixelRect& r : coverOf(strokes, 1, 32)) {
      const int x = std::max(0, r.x);
      const int y = std::max(0, r.y);
      const PixelRect inside{x, y, std::min(Sheet::kSide, r.x + r.width) - x,
                             std::min(Sheet::kSide, r.y + r.height) - y};
      for (const Stroke& each : strokes) wipeStroke(sheet.area(inside), each, kPaper);
    }
    EXPECT_EQ(sheet, Sheet());
  });
}

TEST(LineCover, FollowsItsLinesInBandsWithoutOverlap) {
  forStrokes([](const Stroke& stroke) {
    const auto cover = coverOf({stroke, strokeAt(330, 8), strokeAt(10, 8)}, 2, 16);
    for (std::size_t i = 1; i < cover.size(); ++i) {
      const PixelRect& last = cover[i - 1];
      const PixelRect& next = cover[i];
      const bool beside = next.y == last.y && next.height == last.height;
      EXPECT_TRUE(beside ? next.x > last.x + last.width : next.y >= last.y + last.height) << i;
    }
  });
  int pixels = 0;
  for (const PixelRect& r : coverOf({{{{0, 0}, {300, 300}}, 4}}, 2, 32)) {
    pixels += r.width * r.height;
  }
  EXPECT_LT(pixels, 300 * 300 / 5);
  EXPECT_TRUE(coverOf({}, 2, 32).empty());
}

}  // namespace
}  // namespace qv3
