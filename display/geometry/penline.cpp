#include "display/geometry/penline.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qv3 {
namespace {

/// Below it a direction counts as parallel to an axis: over millions of pixels it strays less than
/// a hundredth of a pixel.
constexpr double kParallel = 1e-9;

/// Two pieces join smoothly where neither is steeper than 60 degrees and the turn is less than 11.
/// Each column is then shaded by one of them alone, which strays a quarter of a pixel at most, and
/// no round join is needed.
constexpr double kFlat = 0.5;
constexpr double kSmoothTurn = 0.98;

/// Distances in fixed point, so that 16 bits hold twice the widest pen and a full coverage of
/// 0..255 is a shift away.
constexpr int kShift = 2;
constexpr std::int16_t kFull = 255 << kShift;

constexpr int kBlock = PenLine::kBlock;

/// Finer, for places.
constexpr int kFineShift = 16;

std::int64_t fine(double pixels) {
  return static_cast<std::int64_t>(pixels * (1 << kFineShift));
}

std::int16_t fixed(double pixels) {
  return static_cast<std::int16_t>(pixels * kFull);
}

double square(double value) {
  return value * value;
}

bool isEmpty(PenLine::Rows rows) {
  return rows.first >= rows.last;
}

/// A nearer line covers what a farther one does and more: the greater coverage holds.
void cover(std::uint8_t& pixel, double coverage) {
  const auto covered = static_cast<std::uint8_t>(std::clamp(coverage, 0.0, 1.0) * 255);
  pixel = std::max(pixel, covered);
}

/// Coverage of a block of rows beside a strip, whose middle is `distance` from the first one's
/// centre and `rise` farther from each row to the next. Rows out of reach get none, so there may be
/// more of them than asked for. Kept in a form that compilers turn into one pass of vector
/// instructions: a fixed number of rows, 16 bits, comparisons instead of calls.
[[gnu::noinline]] void shadeBlock(std::uint8_t* pixel, std::int16_t reach, std::int16_t distance,
                                  std::int16_t rise) {
  std::array<std::int16_t, kBlock> covered{};
  for (int i = 0; i < kBlock; ++i) {
    const auto below = static_cast<std::int16_t>(distance + i * rise);
    const auto above = static_cast<std::int16_t>(-below);
    const auto left = static_cast<std::int16_t>(reach - (below > above ? below : above));
    const auto some = left > 0 ? left : std::int16_t{0};
    covered[i] = some < kFull ? some : kFull;
  }
  for (int i = 0; i < kBlock; ++i) {
    const auto now = static_cast<std::uint8_t>(covered[i] >> kShift);
    pixel[i] = pixel[i] > now ? pixel[i] : now;
  }
}

}  // namespace

/// One straight piece, x not falling along it.
struct PenLine::Piece {
  Piece(Point a, Point b)
      : from(a), to(b), length(std::sqrt(square(b.x - a.x) + square(b.y - a.y))) {
    if (length <= 0) return;
    cosine = (b.x - a.x) / length;
    sine = (b.y - a.y) / length;
  }

  bool isFlat() const { return cosine > kFlat; }
  bool joinsSmoothly(const Piece& next) const {
    return isFlat() && next.isFlat() && cosine * next.cosine + sine * next.sine > kSmoothTurn;
  }

  Point from;
  Point to;
  double length;
  double cosine = 0;
  double sine = 0;
  bool smoothStart = false;
  bool smoothEnd = false;
};

void PenLine::resize(int width, int height) {
  m_width = std::max(width, 0);
  m_height = std::max(height, 0);
  m_coverage.assign(offset(m_width), 0);
  m_rows.assign(static_cast<std::size_t>(m_width), {0, 0});
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
    const bool smooth = pieces[i - 1].joinsSmoothly(pieces[i]);
    pieces[i - 1].smoothEnd = pieces[i].smoothStart = smooth;
    if (!smooth) dot(pieces[i].from);
  }
  for (const auto& piece : pieces) scan(piece);
}

/// Where the piece's ends are out of reach its columns cross a plain strip. So they do at a smooth
/// join, where a column belongs to the piece that its centre is on; only the few columns beside
/// other ends need those looked at.
void PenLine::scan(const Piece& piece) {
  const double slack = m_reach * std::fabs(piece.sine);
  const double before = piece.smoothStart ? 0 : slack;
  const double behind = piece.smoothEnd ? 0 : slack;
  const int first = columnAt(piece.from.x - before);
  const int last = columnAt(piece.to.x + behind);
  const int inside = std::clamp(columnAt(piece.from.x + before), first, last);
  const int outside = std::clamp(columnAt(piece.to.x - behind), inside, last);
  for (int column = first; column < inside; ++column) scanEnd(piece, column);
  scanInside(piece, inside, outside);
  for (int column = outside; column < last; ++column) scanEnd(piece, column);
}

/// Whole numbers here, 1/65536 of a pixel: it is by far the busiest loop of a redraw.
void PenLine::scanInside(const Piece& piece, int first, int last) {
  if (first >= last) return;
  const std::int64_t half = fine(m_reach / piece.cosine);
  const std::int64_t slope = fine(piece.sine / piece.cosine);
  const std::int64_t cosine = fine(piece.cosine * kFull);
  const auto rise = static_cast<std::int16_t>(cosine >> kFineShift);
  const std::int16_t reach = fixed(m_reach);
  std::int64_t middle =
      fine(piece.from.y + (first + 0.5 - piece.from.x) * piece.sine / piece.cosine - 0.5);
  for (int column = first; column < last; ++column, middle += slope) {
    const Rows rows{clipRow(middle - half), clipRow(middle + half)};
    if (isEmpty(rows)) continue;
    std::uint8_t* pixel = claim(column, rows);
    for (int row = rows.first; row < rows.last; row += kBlock, pixel += kBlock) {
      const std::int64_t rowsAway = (static_cast<std::int64_t>(row) << kFineShift) - middle;
      const std::int64_t away = (rowsAway * cosine) >> (2 * kFineShift);
      shadeBlock(pixel, reach, static_cast<std::int16_t>(away), rise);
    }
  }
}

/// The first row of the sheet whose centre is not above `y`, which counts from the centre of row 0.
int PenLine::clipRow(std::int64_t y) const {
  const std::int64_t row = (y >> kFineShift) + 1;
  return static_cast<int>(std::clamp<std::int64_t>(row, 0, m_height));
}

void PenLine::scanEnd(const Piece& piece, int column) {
  const double dx = column + 0.5 - piece.from.x;
  const Rows rows = rowsOf(piece, dx);
  if (isEmpty(rows)) return;
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
    return {0, 0};
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
    return {0, 0};
  }
  return clip(top, bottom);
}

void PenLine::dot(Point centre) {
  const Rows rows = clip(centre.y - m_reach, centre.y + m_reach);
  if (isEmpty(rows)) return;
  const int first = static_cast<int>(std::clamp(centre.x - m_reach, 0.0, m_width + 0.0));
  const int last = static_cast<int>(std::clamp(centre.x + m_reach + 1, 0.0, m_width + 0.0));
  for (int column = first; column < last; ++column) {
    const double dx = column + 0.5 - centre.x;
    std::uint8_t* pixel = claim(column, rows);
    for (int row = rows.first; row < rows.last; ++row, ++pixel) {
      const double dy = row + 0.5 - centre.y;
      cover(*pixel, m_reach - std::sqrt(dx * dx + dy * dy));
    }
  }
}

/// The first column whose centre is not left of `x`, within the sheet.
int PenLine::columnAt(double x) const {
  return static_cast<int>(std::clamp(x + 0.5, 0.0, static_cast<double>(m_width)));
}

/// The rows of the sheet whose centres lie in [top, bottom].
PenLine::Rows PenLine::clip(double top, double bottom) const {
  const double limit = m_height;
  const double first = top + 0.5;
  const double last = bottom + 0.5;
  return {first > 0 ? static_cast<int>(first < limit ? first : limit) : 0,
          last > 0 ? static_cast<int>(last < limit ? last : limit) : 0};
}

/// Notes that these rows are covered; the first one's pixel.
std::uint8_t* PenLine::claim(int column, Rows rows) {
  Rows& used = m_rows[static_cast<std::size_t>(column)];
  used =
      isEmpty(used) ? rows : Rows{std::min(used.first, rows.first), std::max(used.last, rows.last)};
  return m_coverage.data() + offset(column) + rows.first;
}

}  // namespace qv3
