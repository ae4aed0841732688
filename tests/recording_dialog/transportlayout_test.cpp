#include "recording/dialog/transportlayout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qv3 {
namespace {

TEST(TransportLayout, HeightIsFixedUpToTheStandardFont) {
  for (const auto& [line, height] :
       {std::pair{8, 83}, {15, 83}, {19, 83}, {20, 88}, {38, 166}, {57, 249}})
    EXPECT_EQ(transportHeight(line), height) << line;
}

/// Texts of a common font with lines so high.
TransportMetrics metricsAt(int line) {
  TransportMetrics metrics;
  metrics.line = line;
  metrics.captions = {line * 3, line * 2, line * 3, line * 2,
                      line * 2, line * 3, line * 2, line * 4};
  metrics.time = line * 9 / 2;
  metrics.tag = line * 3;
  metrics.details = line * 7;
  metrics.list = {line * 3 + 20, line + 8};
  return metrics;
}

void expectApart(const std::vector<QRect>& parts, const QRect& within, const std::string& what) {
  for (std::size_t i = 0; i < parts.size(); ++i) {
    EXPECT_TRUE(within.contains(parts[i])) << what << ", part " << i;
    EXPECT_FALSE(parts[i].isEmpty()) << what << ", part " << i;
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_FALSE(parts[i].intersects(parts[j])) << what << ", parts " << i << " and " << j;
  }
}

TEST(TransportLayout, NothingOverlapsOrLeavesThePanelAtAnyWidthAndFont) {
  for (const int line : {10, 14, 15, 19, 22, 28, 36, 41}) {
    const TransportMetrics metrics = metricsAt(line);
    const int height = transportHeight(line);
    for (int width = 700; width <= 2560; width += 31) {
      const std::string what = "line " + std::to_string(line) + " width " + std::to_string(width);
      const TransportPlaces places = layOutTransport({width, height}, metrics);
      std::vector<QRect> parts(places.keys.begin(), places.keys.end());
      parts.insert(parts.end(), {places.bar, places.display, places.list});
      expectApart(parts, {0, 0, width, height}, what);
      expectApart({places.time, places.total, places.file, places.mode, places.tag}, places.display,
                  what);
      EXPECT_GE(places.total.height(), line) << what;
      if (!places.captions) continue;
      for (std::size_t key = 0; key < places.keys.size(); ++key)
        EXPECT_GT(places.keys[key].width(), metrics.captions[key]) << what;
    }
  }
}

TEST(TransportLayout, CaptionsGoBeforeTheReadOutsLackRoom) {
  struct Row {
    int width, line;
    bool captions, twoRows;
  };
  for (const Row& row : {Row{800, 14, true, false},
                         {1280, 15, true, false},
                         {700, 15, false, false},
                         {700, 28, false, true},
                         {2560, 28, true, false}}) {
    const TransportPlaces places =
        layOutTransport({row.width, transportHeight(row.line)}, metricsAt(row.line));
    EXPECT_EQ(places.captions, row.captions) << row.width << " " << row.line;
    const bool twoRows =
        places.key(TransportKey::Save).top() != places.key(TransportKey::Record).top();
    EXPECT_EQ(twoRows, row.twoRows) << row.width << " " << row.line;
  }
}

TEST(TransportLayout, APanelWithoutRoomHasNoNegativeParts) {
  for (const QSize size : {QSize(0, 0), QSize(10, 83), QSize(300, 83), QSize(700, 5)}) {
    const TransportPlaces places = layOutTransport(size, metricsAt(15));
    for (const QRect& part : {places.bar, places.display, places.time, places.total, places.file,
                              places.mode, places.tag, places.list}) {
      EXPECT_GE(part.width(), 0);
      EXPECT_GE(part.height(), 0);
    }
  }
}

}  // namespace
}  // namespace qv3
