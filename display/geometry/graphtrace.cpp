#include "display/geometry/graphtrace.h"

#include <algorithm>

#include "measure/numbers.h"
#include "measure/sensitivity.h"

namespace qv3 {
namespace {

constexpr int kGridSpacing = 20;
constexpr std::int64_t kFullScale = 65536;

/// Within +-kLimit, so that neither the offset nor a difference from it leaves 32 bits.
std::int32_t held(double value) {
  return std::clamp(roundHalfEven(value), -GraphTrace::kLimit, GraphTrace::kLimit);
}

/// The least multiple of the step that is not below the distance.
std::int64_t wholeSteps(std::int64_t distance) {
  return (distance + GraphTrace::kStep - 1) / GraphTrace::kStep * GraphTrace::kStep;
}

}  // namespace

GraphTrace::GraphTrace() {
  for (std::size_t i = 0; i < kGraphColumns; ++i) m_state.GridColumn[i] = i % kGridSpacing == 0;
  for (int j = 1; j <= kGraphLevels; ++j) {
    m_state.GridLevel[static_cast<std::size_t>(j - 1)] =
        roundHalfEven(static_cast<double>(kFullScale) / 7 * j);
  }
}

void GraphTrace::resizeSurface(int width) {
  m_surfaceWidth = std::max(width, 0);
  for (std::size_t i = 0; i < kGraphColumns; ++i) {
    const auto scaled = static_cast<std::int64_t>(i) * m_surfaceWidth;
    m_state.x[i] = static_cast<std::int32_t>(scaled / (kGraphColumns - 1));
  }
  m_state.GraphRebuild = true;
}

bool GraphTrace::Update_Graph(std::int32_t value, int knobRow, float gain, bool invert) {
  const bool rebuilt = m_state.GraphRebuild;
  if (rebuilt) rebuild();
  const std::int64_t plotted = invert ? value : kFullScale - value;

  ++m_state.CallCount;
  if (m_state.CallCount % 2 != 0) return rebuilt;
  if (m_state.CallCount % m_state.Divider == 0) m_state.CallCount = 0;

  const int row = clampKnob(knobRow);
  if (row != m_state.KnobRow) {
    rescale(row, gain);
  } else if (m_state.CallCount == 0) {
    store(plotted, gain);
  }
  recentre();
  return true;
}

std::optional<GraphTrace::Point> GraphTrace::pointAt(int age) const {
  const auto& column = m_state.GraphPoints[static_cast<std::size_t>(ringIndex(age))];
  if (!column.used) return std::nullopt;
  const std::int64_t y = static_cast<std::int64_t>(column.value) - m_state.GraphOffset;
  return Point{m_state.x[static_cast<std::size_t>(age)], y};
}

void GraphTrace::rebuild() {
  m_state.GraphPoints.fill({});
  m_state.ColumnWidth = m_surfaceWidth / kGraphColumns;
  m_state.Divider = 1;
  m_state.GraphRebuild = false;
}

void GraphTrace::store(std::int64_t value, double gain) {
  m_state.WriteIndex = (m_state.WriteIndex + 1) % kGraphColumns;
  const double scaled = 2 * static_cast<double>(value) * gain;
  m_state.GraphPoints[static_cast<std::size_t>(m_state.WriteIndex)] = {held(scaled), true};
}

void GraphTrace::rescale(int knobRow, double gain) {
  for (auto& column : m_state.GraphPoints) column.value = held(column.value * (gain / m_gain));
  m_state.KnobRow = knobRow;
  m_gain = gain;
}

void GraphTrace::recentre() {
  const auto& newest = m_state.GraphPoints[static_cast<std::size_t>(m_state.WriteIndex)];
  if (!newest.used) return;
  std::int64_t offset = m_state.GraphOffset;
  const std::int64_t y = newest.value - offset;
  if (y > kBandHigh) offset += wholeSteps(y - kBandHigh);
  if (y < kBandLow) offset -= wholeSteps(kBandLow - y);
  m_state.GraphOffset = static_cast<std::int32_t>(offset);
}

}  // namespace qv3
