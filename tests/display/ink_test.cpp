#include "display/geometry/ink.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace qv3 {
namespace {

constexpr std::uint32_t kPaper = 0xffffffff;
constexpr std::uint32_t kInk = 0xff000000;

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

// An edge at 45 degrees is sampled less than a sixteenth of a pixel too far out or in.
TEST(Ink, CoversTheStrokesArea) {
  forStrokes([](const Stroke& stroke) {
    Sheet sheet;
    inkStroke(sheet.area(), stroke, kInk);
    EXPECT_NEAR(sheet.inked(), 65 * stroke.width, 2 * 65 / 16.0);
  });
}

TEST(Ink, UprightStrokeOnPixelBordersIsSharp) {
  Sheet sheet;
  inkStroke(sheet.area(), {{{50, 20}, {50, 60}}, 4}, 0xff123456);
  EXPECT_EQ(sheet.at(47, 40), kPaper);
  EXPECT_EQ(sheet.at(48, 40), 0xff123456);
  EXPECT_EQ(sheet.at(51, 40), 0xff123456);
  EXPECT_EQ(sheet.at(52, 40), kPaper);
  EXPECT_EQ(sheet.at(50, 19), kPaper);
  EXPECT_EQ(sheet.at(50, 20), 0xff123456);
  EXPECT_EQ(sheet.at(50, 59), 0xff123456);
  EXPECT_EQ(sheet.at(50, 60), kPaper);
}

TEST(Ink, HalfCoveredPixelsAreHalfway) {
  Sheet sheet;
  inkStroke(sheet.area(), {{{20, 50.5}, {60, 50.5}}, 2}, 0xff0000ff);
  EXPECT_EQ(sheet.at(40, 50), 0xff0000ff);
  EXPECT_EQ(sheet.at(40, 49), 0xff7f7fff);
  EXPECT_EQ(sheet.at(40, 51), 0xff7f7fff);
}

TEST(Ink, PartsMakeTheWhole) {
  forStrokes([](const Stroke& stroke) {
    Sheet whole;
    inkStroke(whole.area(), stroke, kInk);
    Sheet parts;
    for (int y = 0; y < Sheet::kSide; y += 50) {
      inkStroke(parts.area({0, y, 77, 50}), stroke, kInk);
      inkStroke(parts.area({77, y, Sheet::kSide - 77, 50}), stroke, kInk);
    }
    EXPECT_EQ(whole, parts);
  });
}

TEST(Ink, WipeFindsEveryPixel) {
  forStrokes([](const Stroke& stroke) {
    Sheet sheet;
    inkStroke(sheet.area(), stroke, kInk);
    wipeStroke(sheet.area(), stroke, kPaper);
    EXPECT_EQ(sheet, Sheet());
  });
}

TEST(Ink, OwnColourChangesNothing) {
  forStrokes([](const Stroke& stroke) {
    Sheet sheet;
    inkStroke(sheet.area(), stroke, kPaper);
    EXPECT_EQ(sheet, Sheet());
  });
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
      wipeStroke(sheet.area(inside), strokes[0], kPaper);
      wipeStroke(sheet.area(inside), strokes[1], kPaper);
    }
    EXPECT_EQ(sheet, Sheet());
  });
}

TEST(LineCover, IsSortedInBandsWithoutOverlap) {
  forStrokes([](const Stroke& stroke) {
    const auto cover = coverOf({stroke, strokeAt(330, 8), strokeAt(10, 8)}, 2, 16);
    for (std::size_t i = 1; i < cover.size(); ++i) {
      const PixelRect& last = cover[i - 1];
      const PixelRect& next = cover[i];
      if (next.y == last.y) {
        EXPECT_EQ(next.height, last.height);
        EXPECT_GT(next.x, last.x + last.width);
      } else {
        EXPECT_GE(next.y, last.y + last.height);
      }
    }
  });
}

TEST(LineCover, FollowsASlantedLine) {
  int pixels = 0;
  for (const PixelRect& r : coverOf({{{{0, 0}, {300, 300}}, 4}}, 2, 32)) {
    pixels += r.width * r.height;
  }
  EXPECT_LT(pixels, 300 * 300 / 5);
  EXPECT_TRUE(coverOf({}, 2, 32).empty());
}

}  // namespace
}  // namespace qv3
