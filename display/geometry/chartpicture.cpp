#include "display/geometry/chartpicture.h"

#include <algorithm>
#include <cmath>

namespace qv3 {
namespace {

constexpr int kGridTop = 65536;  ///< a vertical grid line ends here, a little below the sheet's top

std::uint32_t mixedChannel(std::uint32_t paper, std::uint32_t ink, std::uint32_t amount,
                           int shift) {
  const std::uint32_t a = (paper >> shift) & 0xff;
  const std::uint32_t b = (ink >> shift) & 0xff;
  return ((a * (255 - amount) + b * amount + 127) / 255) << shift;
}

std::uint32_t mixed(std::uint32_t paper, std::uint32_t ink, std::uint32_t amount) {
  return 0xff000000U | mixedChannel(paper, ink, amount, 16) | mixedChannel(paper, ink, amount, 8) |
         mixedChannel(paper, ink, amount, 0);
}

PenLine::Rows both(PenLine::Rows a, PenLine::Rows b) {
  if (a.isEmpty()) return b;
  if (b.isEmpty()) return a;
  return {std::min(a.first, b.first), std::max(a.last, b.last)};
}

/// Puts rows of one column into the picture.
struct Inking {
  std::uint32_t* pixel;
  std::ptrdiff_t stride;
  const std::uint32_t* const* ink;  ///< by row: colours by coverage
  const std::uint8_t* covered;      ///< by row

  void any(int rows) const {
    for (int i = 0; i < rows; ++i) pixel[i * stride] = ink[i][covered[i]];
  }
  /// Most columns have few rows, and a loop costs as much again as what it does to them.
  template <int rows>
  void fixed() const {
    any(rows);
  }
};

}  // namespace

void ChartPicture::resize(int width, int height, double ratio) {
  m_line.resize(width, height);
  m_ratio = ratio;
  m_pixels.assign(
      static_cast<std::size_t>(m_line.width()) * static_cast<std::size_t>(m_line.height()),
      m_look.sheet);
  m_inked = m_line.rows();
  m_inkedRows = {};
  m_stale = true;
}

void ChartPicture::setLook(const ChartLook& look) {
  if (look == m_look) return;
  m_look = look;
  m_stale = true;
}

PenLine::Rows ChartPicture::draw(const GraphTrace& trace) {
  const bool all = m_stale || moveGrid(trace);
  if (m_stale) drawSheet(trace);
  drawLine(trace);
  const PenLine::Rows before = m_inkedRows;
  inkLine();
  return all ? PenLine::Rows{0, height()} : both(before, m_inkedRows);
}

void ChartPicture::drawSheet(const GraphTrace& trace) {
  for (std::uint32_t amount = 0; amount < 256; ++amount) {
    m_onSheet[amount] = mixed(m_look.sheet, m_look.pen, amount);
    m_onGrid[amount] = mixed(m_look.grid, m_look.pen, amount);
  }
  markRows(trace);
  m_isGridColumn.assign(static_cast<std::size_t>(width()), 0);
  m_gridAt.clear();
  for (int column = 0; column < width(); ++column) bare(column, {0, height()});
  moveGrid(trace);
  m_stale = false;
}

/// Which rows are grid: those of the horizontal lines, and in a vertical line those below its end.
void ChartPicture::markRows(const GraphTrace& trace) {
  auto& plain = m_inkOfRow[0];
  plain.assign(static_cast<std::size_t>(height()), m_onSheet.data());
  if (m_look.gridY) {
    for (const int level : trace.state().GridLevel) {
      const int first = std::max(rowAt(level) - hairline() / 2, 0);
      const int last = std::min(first + hairline(), height());
      std::fill(plain.begin() + first, plain.begin() + last, m_onGrid.data());
    }
  }
  m_inkOfRow[1] = plain;
  std::fill(m_inkOfRow[1].begin() + rowAt(kGridTop), m_inkOfRow[1].end(), m_onGrid.data());
}

std::vector<int> ChartPicture::gridColumns(const GraphTrace& trace) const {
  std::vector<int> columns;
  if (!m_look.gridX) return columns;
  for (int age = 0; age < kGraphColumns; ++age) {
    if (!trace.state().GridColumn[static_cast<std::size_t>(trace.ringIndex(age))]) continue;
    const int first = static_cast<int>(trace.state().x[static_cast<std::size_t>(age)] * m_ratio);
    for (int i = first; i < std::min(first + hairline(), width()); ++i) columns.push_back(i);
  }
  return columns;
}

/// False if the vertical lines stand where they are wanted.
bool ChartPicture::moveGrid(const GraphTrace& trace) {
  std::vector<int> wanted = gridColumns(trace);
  if (wanted == m_gridAt) return false;
  const auto repaint = [this](const std::vector<int>& columns, std::uint8_t isGrid) {
    for (const int column : columns) {
      m_isGridColumn[static_cast<std::size_t>(column)] = isGrid;
      bare(column, {0, height()});
    }
  };
  repaint(m_gridAt, 0);
  repaint(wanted, 1);
  m_gridAt = std::move(wanted);
  return true;
}

/// Columns without a sample are the oldest: the line begins after them.
void ChartPicture::drawLine(const GraphTrace& trace) {
  m_line.clear(m_inked);
  if (m_look.penWidth <= 0) return;
  const double perUnit = static_cast<double>(height()) / kGraphTop;
  m_points.clear();
  for (int age = 0; age < kGraphColumns; ++age) {
    if (const auto point = trace.pointAt(age)) {
      m_points.push_back({point->x * m_ratio, static_cast<double>(kGraphTop - point->y) * perUnit});
    }
  }
  m_line.draw(m_points, m_look.penWidth * m_ratio);
}

/// Puts the line into the picture, and the paper back where only the line before was. What it runs
/// through is held here, since the compiler must fear that a pixel written changes it.
void ChartPicture::inkLine() {
  const int columns = width();
  const PenLine::Rows* now = m_line.rows().data();
  const PenLine::Rows* before = m_inked.data();
  int first = height();
  int last = 0;
  for (int column = 0; column < columns; ++column, ++now, ++before) {
    if (before->first < now->first) {
      bare(column, {before->first, std::min(before->last, now->first)});
    }
    if (before->last > now->last) bare(column, {std::max(before->first, now->last), before->last});
    if (now->isEmpty()) continue;
    ink(column, *now);
    first = std::min(first, now->first);
    last = std::max(last, now->last);
  }
  m_inkedRows = {first, last};
}

inline void ChartPicture::ink(int column, PenLine::Rows rows) {
  const Inking inking{pixelAt(column, rows.first), width(), inkIn(column) + rows.first,
                      m_line.coverage(column) + rows.first};
  switch (rows.count()) {
    case 3:
      return inking.fixed<3>();
    case 4:
      return inking.fixed<4>();
    case 5:
      return inking.fixed<5>();
    case 6:
      return inking.fixed<6>();
    case 7:
      return inking.fixed<7>();
    case 8:
      return inking.fixed<8>();
    default:
      return inking.any(rows.count());
  }
}

inline void ChartPicture::bare(int column, PenLine::Rows rows) {
  const std::uint32_t* const* inkOfRow = inkIn(column);
  const std::ptrdiff_t stride = width();
  std::uint32_t* pixel = pixelAt(column, rows.first);
  for (int row = rows.first; row < rows.last; ++row, pixel += stride) *pixel = inkOfRow[row][0];
}

int ChartPicture::rowAt(double y) const {
  const double row = (1 - y / kGraphTop) * height();
  return std::clamp(static_cast<int>(std::lround(row)), 0, height());
}

int ChartPicture::hairline() const {
  return std::max(1, static_cast<int>(std::lround(m_ratio)));
}

std::uint32_t* ChartPicture::pixelAt(int column, int row) {
  return m_pixels.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(width()) +
         column;
}

const std::uint32_t* const* ChartPicture::inkIn(int column) const {
  return m_inkOfRow[m_isGridColumn[static_cast<std::size_t>(column)]].data();
}

}  // namespace qv3
