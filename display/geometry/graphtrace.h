#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace qv3 {

constexpr int kGraphColumns = 200;
constexpr int kGraphLevels = 6;

/// y of the sheet's upper edge; its lower edge is 0.
constexpr std::int32_t kGraphTop = 65900;

/// The chart recorder's tables and counters.
struct GraphState {
  struct Column {
    std::int32_t value = 0;
    bool used = false;  ///< a sample was stored since the last rebuild
  };

  std::array<Column, kGraphColumns> GraphPoints{};  ///< a ring; values scaled by the knob row
  std::array<std::int32_t, kGraphColumns> x{};      ///< surface units, by age: 0 is the oldest
  std::array<bool, kGraphColumns> GridColumn{};     ///< by ring index
  std::array<std::int32_t, kGraphLevels> GridLevel{};

  int WriteIndex = 0;   ///< column stored last
  int CallCount = 0;    ///< samples seen since the last scroll step
  int ColumnWidth = 0;  ///< surface units
  int Divider = 1;      ///< plotted samples in a scroll step
  int KnobRow = 0;      ///< at which the stored values were taken
  std::int32_t GraphOffset = 0;
  bool GraphRebuild = true;
};

/// The strip chart's memory: the last 200 plotted samples, which is every second one of 400. It
/// keeps the trace on the sheet by moving it in whole steps and follows the sensitivity knob.
/// Any value is taken; stored ones are held within +-kLimit.
class GraphTrace {
 public:
  static constexpr std::int32_t kLimit = 2'000'000'000;
  static constexpr std::int32_t kStep = 5000;
  static constexpr std::int32_t kBandLow = 1000;
  static constexpr std::int32_t kBandHigh = 64537;

  struct Point {
    std::int32_t x;  ///< surface units from the left
    std::int64_t y;  ///< on the sheet where it lies in 0..kGraphTop
  };

  GraphTrace();

  /// Width of the surface in its own units. A layout change rebuilds the chart: the columns are
  /// cleared with the next sample, counters and offset stay.
  void resizeSurface(int width);
  void raiseRebuild() { m_state.GraphRebuild = true; }

  /// One sample on the scale 0..65536, with the knob's row and the gain its label stands for. True
  /// if the picture changed. Unless `invert`, a rising value draws a falling trace.
  bool Update_Graph(std::int32_t value, int knobRow, float gain, bool invert);

  const GraphState& state() const { return m_state; }

  /// Ring index of the column `age` steps after the oldest (0) up to the newest (199).
  int ringIndex(int age) const { return (m_state.WriteIndex + 1 + age) % kGraphColumns; }

  /// Nothing where no sample was stored yet.
  std::optional<Point> pointAt(int age) const;

 private:
  void rebuild();
  void store(std::int64_t value, double gain);
  void rescale(int knobRow, double gain);
  void recentre();

  GraphState m_state;
  int m_surfaceWidth = 0;
  double m_gain = 1;  ///< of `KnobRow`
};

}  // namespace qv3
