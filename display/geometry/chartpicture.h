#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "display/geometry/graphtrace.h"
#include "display/geometry/penline.h"

namespace qv3 {

/// How the strip chart is drawn. Colours are 0xAARRGGBB, opaque.
struct ChartLook {
  std::uint32_t sheet = 0xffffffff;
  std::uint32_t pen = 0xff000000;
  std::uint32_t grid = 0xffc0c0c0;
  int penWidth = 2;  ///< surface units; 0 or less draws no trace
  bool gridX = false;
  bool gridY = false;

  bool operator==(const ChartLook&) const = default;
};

/// The strip chart's picture, in device pixels. The sheet is kept; a new trace costs what the old
/// and the new one touch.
class ChartPicture {
 public:
  ChartPicture() = default;
  ChartPicture(const ChartPicture&) = delete;
  ChartPicture& operator=(const ChartPicture&) = delete;

  /// Device pixels, and how many of them a surface unit has.
  void resize(int width, int height, double ratio);
  void setLook(const ChartLook& look);

  /// Draws the trace as it is now. Returns the rows whose pixels may have changed.
  PenLine::Rows draw(const GraphTrace& trace);

  int width() const { return m_line.width(); }
  int height() const { return m_line.height(); }
  /// Row after row, without padding.
  const std::uint32_t* pixels() const { return m_pixels.data(); }

 private:
  using Ramp = std::array<std::uint32_t, 256>;

  void drawSheet(const GraphTrace& trace);
  void markRows(const GraphTrace& trace);
  std::vector<int> gridColumns(const GraphTrace& trace) const;
  bool moveGrid(const GraphTrace& trace);
  void inkLine();
  void ink(int column, PenLine::Rows rows);
  void bare(int column, PenLine::Rows rows);
  void drawLine(const GraphTrace& trace);
  int rowAt(double y) const;
  int hairline() const;
  std::uint32_t* pixelAt(int column, int row);
  const std::uint32_t* const* inkIn(int column) const;

  ChartLook m_look;
  double m_ratio = 1;
  bool m_stale = true;  ///< the sheet is not drawn, or not as it looks now
  PenLine m_line;
  std::vector<PenLine::Rows> m_inked;  ///< by column: what the picture shows of a line
  PenLine::Rows m_inkedRows;           ///< all of them
  std::vector<std::uint32_t> m_pixels;
  std::vector<int> m_gridAt;                 ///< columns of the vertical grid lines
  std::vector<std::uint8_t> m_isGridColumn;  ///< the same by column
  Ramp m_onSheet{};                          ///< pen on the sheet, by coverage
  Ramp m_onGrid{};
  /// By row, in a plain and in a grid column: m_onSheet or m_onGrid.
  std::array<std::vector<const std::uint32_t*>, 2> m_inkOfRow;
  std::vector<PenLine::Point> m_points;
};

}  // namespace qv3
