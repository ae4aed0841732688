#include "display/geometry/penline.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qv3 {
namespace {

/// Eight rows at once; the compilers that build this know vectors by this attribute.
using Lanes = std::int16_t __attribute__((vector_size(16)));
using Bytes = std::uint8_t __attribute__((vector_size(8)));

/// Below it a direction counts as parallel to an axis: over millions of pixels it strays less than
/// a hundredth of a pixel.
constexpr double kParallel = 1e-9;

/// Two pieces join smoothly where each column can be shaded by one of them alone, without a round
/// join: both are calm, that is not steeper than 60 degrees nor within reach of their own other
/// end, and either so gentle that their corners, drawn pointed then, stick out less than half a
/// pixel, or the turn is less than 11 degrees.
constexpr double kFlat = 0.5;
constexpr double kCorner = 0.4;
constexpr double kSmoothTurn = 0.98;

/// Distances in fixed point, so that 16 bits hold twice the widest pen and a full coverage of
/// 0..255 is a shift away.
constexpr int kShift = 2;
constexpr std::int16_t kFull = 255 << kShift;

/// Finer, for places.
constexpr int kFineShift = 16;

std::int64_t fine(double pixels) {
  return static_cast<std::int64_t>(pixels * (1 << kFineShift));
}

double square(double value) {
  return value * value;
}

/// A nearer line covers what a farther one does and more: the greater coverage holds.
void cover(std::uint8_t& pixel, double coverage) {
  const auto covered = static_cast<std::uint8_t>(std::clamp(coverage, 0.0, 1.0) * 255);
  pixel = std::max(pixel, covered);
}

}  // namespace

/// One straight piece, x not falling along it. Its ends are where columns have to be looked at one
/// by one; at a smooth join a column belongs to the piece that its centre is on.
struct PenLine::Piece {
  Piece(Point a, Point b)
      : from(a), to(b), length(std::sqrt(square(b.x - a.x) + square(b.y - a.y))) {
    if (length <= 0) return;
    cosine = (b.x - a.x) / length;
    sine = (b.y - a.y) / length;
  }

  bool isCalm(double reach) const { return cosine > kFlat && to.x - from.x > reach; }
  bool isGentle(double reach) const { return (reach - 0.5) * (1 - cosine) < kCorner * cosine; }
  bool joinsSmoothly(const Piece& next, double reach) const {
    return isCalm(reach) && next.isCalm(reach) &&
           ((isGentle(reach) && next.isGentle(reach)) ||
            cosine * next.cosine + sine * next.sine > kSmoothTurn);
  }

  Point from;
  Point to;
  double length;
  double cosine = 0;
  double sine = 0;
  bool smoothStart = false;
  bool smoothEnd = false;

  // Columns: the piece's first, its first and last + 1 out of reach of its ends, and its last + 1.
  int first = 0;
  int inside = 0;
  int outside = 0;
  int last = 0;
};

/// What all columns inside a piece have in common.
struct PenLine::Strip {
  Strip(const Piece& piece, double reachPixels)
      : half(fine(reachPixels / piece.cosine)),
        slope(fine(piece.sine / piece.cosine)),
        cosine(fine(piece.cosine * kFull)),
        reach(Lanes{} + static_cast<std::int16_t>(reachPixels * kFull)),
        rise(Lanes{0, 1, 2, 3, 4, 5, 6, 7} * static_cast<std::int16_t>(cosine >> kFineShift)) {}

  /// Coverage of a block of rows from `row` on, in a column where the strip's middle is at
  /// `middle`. Rows out of reach get none, so there may be more of them than asked for.
  Bytes shade(int row, std::int64_t middle) const {
    const std::int64_t rows = (static_cast<std::int64_t>(row) << kFineShift) - middle;
    const Lanes away = static_cast<std::int16_t>((rows * cosine) >> (2 * kFineShift)) + rise;
    const Lanes left = reach - (away < 0 ? -away : away);
    const Lanes some = left > 0 ? left : Lanes{};
    return __builtin_convertvector((some > kFull ? kFull + Lanes{} : some) >> kShift, Bytes);
  }

  std::int64_t half;  ///< of its height in a column, fine
  std::int64_t slope;
  std::int64_t cosine;  ///< of full coverage, fine
  Lanes reach;          ///< of full coverage
  Lanes rise;           ///< from the first row of a block to each
};

void PenLine::resize(int width, int height) {
  m_width = std::max(width, 0);
  m_height = std::max(height, 0);
  m_coverage.resize(offset(m_width));
  m_rows.assign(static_cast<std::size_t>(m_width), {});
}

void PenLine::clear(std::vector<Rows>& before) {
  m_rows.swap(before);
  m_rows.assign(static_cast<std::size_t>(m_width), {});
}

void PenLine::draw(const std::vector<Point>& points, double penWidth) {
  m_reach = std::clamp(penWidth, 0.0, kWidest) / 2 + 0.5;
  std::vector<Piece> pieces;
  pieces.reserve(points.size());
  for (std::size_t i = 1; i < points.size(); ++i) {
    const Piece piece(points[i - 1], points[i]);
    if (piece.length > 0) pieces.push_back(piece);
  }
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    const bool smooth = pieces[i - 1].joinsSmoothly(pieces[i], m_reach);
    pieces[i - 1].smoothEnd = pieces[i].smoothStart = smooth;
    if (!smooth) dot(pieces[i].from);
  }
  // What columns share comes first: the rest of them are then known to be crossed once.
  for (auto& piece : pieces) {
    divide(piece);
    scanEnds(piece);
  }
  for (const auto& piece : pieces) scanInside(piece);
}

void PenLine::divide(Piece& piece) const {
  const double slack = m_reach * std::fabs(piece.sine);
  const double before = piece.smoothStart ? 0 : slack;
  const double behind = piece.smoothEnd ? 0 : slack;
  piece.first = columnAt(piece.from.x - before);
  piece.last = columnAt(piece.to.x + behind);
  piece.inside = std::clamp(columnAt(piece.from.x + before), piece.first, piece.last);
  piece.outside = std::clamp(columnAt(piece.to.x - behind), piece.inside, piece.last);
}

void PenLine::scanEnds(const Piece& piece) {
  for (int column = piece.first; column < piece.inside; ++column) shadeEnd(piece, column);
  for (int column = piece.outside; column < piece.last; ++column) shadeEnd(piece, column);
}

/// Columns that cross a plain strip. Whole numbers here, 1/65536 of a pixel: this is the busiest
/// loop of a redraw.
void PenLine::scanInside(const Piece& piece) {
  if (piece.inside >= piece.outside) return;
  const Strip strip(piece, m_reach);
  const std::int64_t rows = ((2 * strip.half) >> kFineShift) + 1;  // at most, of each column
  const std::int64_t lowest = rows <= kBlock ? m_height - rows : -1;
  const double start = piece.inside + 0.5 - piece.from.x;
  std::int64_t middle = fine(piece.from.y + start * piece.sine / piece.cosine - 0.5);
  Rows* used = m_rows.data() + piece.inside;
  std::uint8_t* coverage = m_coverage.data() + offset(piece.inside);
  const std::size_t stride = offset(1);
  for (int column = piece.inside; column < piece.outside; ++column, middle += strip.slope) {
    const std::int64_t row = ((middle - strip.half) >> kFineShift) + 1;
    if (used->isEmpty() && row >= 0 && row <= lowest) {
      *used = {static_cast<int>(row), static_cast<int>(row + rows)};
      const Bytes block = strip.shade(used->first, middle);
      std::memcpy(coverage + row, &block, kBlock);
    } else {
      shadeMore(strip, column, middle);
    }
    ++used;
    coverage += stride;
  }
}

/// A column that something else may cross too, or where one block within the sheet is not enough.
void PenLine::shadeMore(const Strip& strip, int column, std::int64_t middle) {
  const Rows rows{clipRow(middle - strip.half), clipRow(middle + strip.half)};
  if (rows.isEmpty()) return;
  std::uint8_t* pixel = claim(column, rows);
  for (int row = rows.first; row < rows.last; row += kBlock, pixel += kBlock) {
    const Bytes block = strip.shade(row, middle);
    const int count = std::min(kBlock, rows.last - row);
    for (int i = 0; i < count; ++i) pixel[i] = std::max(pixel[i], block[i]);
  }
}

void PenLine::shadeEnd(const Piece& piece, int column) {
  const double dx = column + 0.5 - piece.from.x;
  const Rows rows = rowsOf(piece, dx);
  if (rows.isEmpty()) return;
  std::uint8_t* pixel = claim(column, rows);
  double distance = (rows.first + 0.5 - piece.from.y) * piece.cosine - dx * piece.sine;
  for (int row = rows.first; row < rows.last; ++row, ++pixel, distance += piece.cosine) {
    cover(*pixel, m_reach - std::fabs(distance));
  }
}

/// The rows whose pixel centres lie beside the piece, within reach of it, in the column `dx` right
/// of its beginning.
PenLine::Rows PenLine::rowsOf(const Piece& piece, double dx) const {
  double top = -1;
  double bottom = m_height;
  if (piece.cosine > kParallel) {
    const double middle = dx * piece.sine;
    top = std::max(top, piece.from.y + (middle - m_reach) / piece.cosine);
    bottom = std::min(bottom, piece.from.y + (middle + m_reach) / piece.cosine);
  } else if (std::fabs(dx) > m_reach) {
    return {};
  }
  const double along = dx * piece.cosine;
  const double start = piece.smoothStart ? -m_reach : 0;
  const double end = piece.smoothEnd ? piece.length + m_reach : piece.length;
  if (std::fabs(piece.sine) > kParallel) {
    const double a = piece.from.y + (start - along) / piece.sine;
    const double b = piece.from.y + (end - along) / piece.sine;
    top = std::max(top, std::min(a, b));
    bottom = std::min(bottom, std::max(a, b));
  } else if (along < start || along > end) {
    return {};
  }
  return clip(top, bottom);
}

void PenLine::dot(Point centre) {
  const Rows rows = clip(centre.y - m_reach, centre.y + m_reach);
  if (rows.isEmpty()) return;
  const int last = columnAt(centre.x + m_reach);
  for (int column = columnAt(centre.x - m_reach); column < last; ++column) {
    const double across = square(column + 0.5 - centre.x);
    std::uint8_t* pixel = claim(column, rows);
    for (int row = rows.first; row < rows.last; ++row, ++pixel) {
      cover(*pixel, m_reach - std::sqrt(across + square(row + 0.5 - centre.y)));
    }
  }
}

/// The first column whose centre is not left of `x`, within the sheet.
int PenLine::columnAt(double x) const {
  return static_cast<int>(std::clamp(x + 0.5, 0.0, static_cast<double>(m_width)));
}

/// The first row whose centre is below `y`, in fine units from the centre of row 0, within the
/// sheet.
int PenLine::clipRow(std::int64_t y) const {
  const std::int64_t row = (y >> kFineShift) + 1;
  return static_cast<int>(std::clamp<std::int64_t>(row, 0, m_height));
}

/// The rows of the sheet whose centres lie in [top, bottom].
PenLine::Rows PenLine::clip(double top, double bottom) const {
  const double limit = m_height;
  return {static_cast<int>(std::clamp(top + 0.5, 0.0, limit)),
          static_cast<int>(std::clamp(bottom + 0.5, 0.0, limit))};
}

/// Makes these rows mean something; the first one's pixel.
std::uint8_t* PenLine::claim(int column, Rows rows) {
  Rows& used = m_rows[static_cast<std::size_t>(column)];
  std::uint8_t* const begin = m_coverage.data() + offset(column);
  if (used.isEmpty()) used = {rows.first, rows.first};
  if (rows.first < used.first) {
    std::fill(begin + rows.first, begin + used.first, std::uint8_t{0});
    used.first = rows.first;
  }
  if (rows.last > used.last) {
    std::fill(begin + used.last, begin + rows.last, std::uint8_t{0});
    used.last = rows.last;
  }
  return begin + rows.first;
}

}  // namespace qv3
