#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

namespace qv3 {

/// How much of each pixel a pen line covers, held by pixel column. Made for a recorder's trace: a
/// long line of short pieces that changes with every frame and touches few pixels of each column,
/// where drawing and wiping must cost in proportion to the line and not to the sheet.
class PenLine {
 public:
  struct Point {
    double x;  ///< pixels from the left, pixel centres at halves
    double y;  ///< pixels from the top
  };

  /// Rows [first, last) of a column; empty where first >= last.
  struct Rows {
    int first;
    int last;
  };

  static constexpr double kWidest = 40;

  /// Shading goes by blocks of rows and may run past a column's end by less than one.
  static constexpr int kBlock = 8;

  /// Wipes everything.
  void resize(int width, int height);

  /// Adds a line through the points, `penWidth` pixels across (held within 0..kWidest). Joins are
  /// round, ends flat. x may not fall from one point to the next; all numbers are finite.
  void draw(const std::vector<Point>& points, double penWidth);

  int width() const { return m_width; }
  int height() const { return m_height; }

  /// What may be covered in a column; the rest is 0.
  Rows rows(int column) const { return m_rows[static_cast<std::size_t>(column)]; }

  /// Coverage 0..255 of the whole column, row 0 first.
  const std::uint8_t* column(int column) const { return m_coverage.data() + offset(column); }

  void wipeColumn(int column) {
    Rows& used = m_rows[static_cast<std::size_t>(column)];
    std::uint8_t* const begin = m_coverage.data() + offset(column);
    for (int row = used.first; row < used.last; row += kBlock) std::memset(begin + row, 0, kBlock);
    used = {0, 0};
  }

 private:
  struct Piece;

  std::size_t offset(int column) const {
    return static_cast<std::size_t>(column) * static_cast<std::size_t>(m_height + kBlock);
  }
  void scan(const Piece& piece);
  void scanInside(const Piece& piece, int first, int last);
  void scanEnd(const Piece& piece, int column);
  Rows rowsOf(const Piece& piece, double dx) const;
  void dot(Point centre);
  int columnAt(double x) const;
  int clipRow(std::int64_t y) const;
  Rows clip(double top, double bottom) const;
  std::uint8_t* claim(int column, Rows rows);

  int m_width = 0;
  int m_height = 0;
  double m_reach =
      1;  ///< half the pen and half a pixel: farther from its middle nothing is covered
  std::vector<std::uint8_t> m_coverage;
  std::vector<Rows> m_rows;
};

}  // namespace qv3
