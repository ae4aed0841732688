#include "display/geometry/windowlayout.h"

#include <algorithm>
#include <cstdint>

namespace qv3 {
namespace {

constexpr int kGraphUnit = 40;
constexpr int kTallestPart = 16384;  ///< a stored number may be anything; no screen is taller

/// `numerator`/`denominator` of a length, to the nearest pixel.
int share(int length, int numerator, int denominator) {
  const auto product = static_cast<std::int64_t>(length) * numerator;
  return static_cast<int>((product + denominator / 2) / denominator);
}

int meterHeight(int meterWidth) {
  return share(meterWidth, 1250, 2000);
}

int columnWidth(int meterWidth) {
  return share(meterWidth, 22, 100);
}

/// Of the widest meter that has room for its column.
int meterWidthIn(int width) {
  return share(std::max(width, 0), 100, 122);
}

/// Of the widest meter that is no higher than this.
std::int64_t meterWidthUnder(int height) {
  return (static_cast<std::int64_t>(height) * 2000 + 999) / 1250;
}

/// Meter, counter and knob in the middle of the upper area.
void placeInstrument(WindowLayout& layout, int width, int height) {
  const int meter =
      static_cast<int>(std::min<std::int64_t>(meterWidthIn(width), meterWidthUnder(height)));
  // Both widths are rounded: a pixel too many or too few at the side is the column's.
  int column = std::min(columnWidth(meter), width - meter);
  if (column > 1 && width - meter - column == 1) ++column;
  const int tall = meterHeight(meter);
  const int left = (width - meter - column) / 2;
  const int top = (height - tall) / 2;
  const int counter = share(meter, 8, 100);
  layout.picMeterPanel = {left, top, meter, tall};
  layout.picBD = {left + meter, top, column, counter};
  layout.picKnob = {left + meter, top + counter, column, column};
}

}  // namespace

int LayoutParts::graphHeight() const {
  return graphVisible ? kGraphUnit * std::clamp(graphHeightIndex, 0, kTallestPart / kGraphUnit) : 0;
}

int LayoutParts::recordingPanelHeight() const {
  return recordingVisible ? std::clamp(recordingHeight, 0, kTallestPart) : 0;
}

WindowLayout layOutWindow(int width, int height, const LayoutParts& parts) {
  WindowLayout layout;
  width = std::max(width, 0);
  height = std::max(height, 0);
  const int recording = std::min(parts.recordingPanelHeight(), height);
  const int graph = std::min(parts.graphHeight(), height - recording);
  layout.recordingPanel = {0, height - recording, width, recording};
  layout.picGraph = {0, height - recording - graph, width, graph};
  placeInstrument(layout, width, height - recording - graph);
  return layout;
}

int naturalHeight(int width, const LayoutParts& parts) {
  return meterHeight(meterWidthIn(width)) + parts.graphHeight() + parts.recordingPanelHeight();
}

}  // namespace qv3
