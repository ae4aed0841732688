#include "recording/positionbar.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

TEST(PositionBar, PlacesAndColumnsMeetAtBothEndsAndInBetween) {
  for (const int width : {2, 3, 137, 676, 1000, 1001, 2548, 5096}) {
    const BarGeometry bar(width, 16);
    EXPECT_EQ(bar.column(0), 0);
    EXPECT_EQ(bar.column(1000), width);
    EXPECT_EQ(bar.placeAt(0), 0);
    EXPECT_EQ(bar.placeAt(width - 1), 1000);
    EXPECT_EQ(bar.placeAt(width - 1 + 0.9), 1000);
    EXPECT_EQ(bar.placeAt(-5), 0);
    EXPECT_EQ(bar.placeAt(width + 500), 1000);
    const int unit = width > 1000 ? width / 1000 : 0;  // where a unit is wider than a pixel
    for (int column = 0; column < width; ++column) {
      const int edge = bar.column(bar.placeAt(column));
      EXPECT_GE(edge, column - unit) << width << " at " << column;
      EXPECT_LE(edge, column + 1 + unit) << width << " at " << column;
    }
  }
  EXPECT_EQ(BarGeometry(0, 0).placeAt(3), 0);
  EXPECT_EQ(BarGeometry(1, 1).placeAt(0), 0);
}

TEST(PositionBar, PicturesOfEveryFace) {
  struct Row {
    const char* name;
    BarState state;
    BarBox block, progress;
  };
  const Row rows[] = {
      {"clear", {BarFace::Clear, {100, 200}, 150}, {}, {}},
      {"whole session", {BarFace::Range, {0, 1000}, {}}, {0, 0, 500, 20}, {}},
      {"part of it", {BarFace::Range, {100, 600}, {}}, {50, 0, 300, 20}, {}},
      {"played", {BarFace::Range, {100, 600}, 350.0}, {50, 0, 300, 20}, {50, 5, 175, 15}},
      {"at its begin", {BarFace::Range, {100, 600}, 100.0}, {50, 0, 300, 20}, {}},
      {"before its begin", {BarFace::Range, {100, 600}, 20.0}, {50, 0, 300, 20}, {}},
      {"past the bar", {BarFace::Range, {0, 1000}, 1200.0}, {0, 0, 500, 20}, {0, 5, 500, 15}},
      {"recording", {BarFace::Recording, {100, 600}, 350.0}, {238, 0, 263, 20}, {}},
      {"saving", {BarFace::Work, {100, 600}, 500.0}, {}, {0, 5, 250, 15}},
  };
  for (const Row& row : rows) {
    const BarPicture picture = BarGeometry(500, 20).picture(row.state);
    EXPECT_EQ(picture.face, row.state.face) << row.name;
    EXPECT_EQ(picture.block, row.block) << row.name;
    EXPECT_EQ(picture.progress, row.progress) << row.name;
  }
}

TEST(PositionBar, ProgressWithinAPixelIsTheSamePicture) {
  const BarGeometry bar(500, 20);
  const auto at = [&](double place) { return bar.picture({BarFace::Range, {0, 1000}, place}); };
  EXPECT_EQ(at(400.1), at(400.9));
  EXPECT_NE(at(400.1), at(402));
}

TEST(PositionBar, DragGoesFromPressToReleaseInItsOwnOrder) {
  BarDrag drag;
  EXPECT_FALSE(drag.move(4));
  EXPECT_FALSE(drag.release());

  drag.press(700);
  EXPECT_FALSE(drag.preview());
  EXPECT_FALSE(drag.move(700));
  EXPECT_TRUE(drag.move(200));
  EXPECT_EQ(drag.preview(), (BarRange{200, 700}));
  EXPECT_EQ(drag.release(), (BarRange{700, 200}));
  EXPECT_FALSE(drag.active());

  drag.press(300);
  drag.move(310);
  drag.move(300);
  EXPECT_FALSE(drag.release()) << "back where it began";

  drag.press(300);
  drag.move(400);
  drag.cancel();
  EXPECT_FALSE(drag.preview());
  EXPECT_FALSE(drag.release());
}

TEST(PositionBar, KeysMovePlaceOrEndsOfTheRange) {
  struct Row {
    BarKey key;
    bool shift;
    BarUse use;
    BarState state;
    std::optional<BarRequest> asked;
  };
  const BarState playing{BarFace::Range, {100, 600}, 350.4};
  const BarState stopped{BarFace::Range, {100, 600}, {}};
  const auto seek = [](int x) { return BarRequest{BarUse::Seek, {x, x}}; };
  const auto range = [](int from, int to) { return BarRequest{BarUse::Range, {from, to}}; };
  const Row rows[] = {
      {BarKey::Left, false, BarUse::Seek, playing, seek(340)},
      {BarKey::Right, false, BarUse::Seek, playing, seek(360)},
      {BarKey::PageRight, false, BarUse::Seek, playing, seek(450)},
      {BarKey::First, false, BarUse::Seek, playing, seek(100)},
      {BarKey::Last, false, BarUse::Seek, playing, seek(600)},
      {BarKey::Right, false, BarUse::Seek, {BarFace::Range, {100, 600}, 600.0}, {}},
      {BarKey::Right, true, BarUse::Seek, playing, {}},
      {BarKey::Left, false, BarUse::Range, stopped, range(90, 600)},
      {BarKey::Right, true, BarUse::Range, stopped, range(100, 610)},
      {BarKey::PageLeft, false, BarUse::Range, stopped, range(0, 600)},
      {BarKey::Last, false, BarUse::Range, stopped, range(599, 600)},
      {BarKey::First, true, BarUse::Range, stopped, range(100, 101)},
      {BarKey::Last, true, BarUse::Range, {BarFace::Range, {0, 1000}, {}}, {}},
      {BarKey::First, false, BarUse::Range, {BarFace::Range, {0, 1000}, {}}, {}},
      {BarKey::Last, false, BarUse::Range, {BarFace::Range, {0, 600}, {}, 200}, range(400, 600)},
      {BarKey::Left, true, BarUse::Range, {BarFace::Range, {400, 605}, {}, 200}, range(400, 600)},
      {BarKey::Left, true, BarUse::Range, {BarFace::Range, {400, 600}, {}, 200}, {}},
      {BarKey::Right, false, BarUse::Range, {BarFace::Range, {0, 100}, {}, 200}, {}},
      {BarKey::Left, false, BarUse::None, stopped, {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(barKey(row.key, row.shift, row.use, row.state), row.asked) << "row " << &row - rows;
  }
}

}  // namespace
}  // namespace qv3
