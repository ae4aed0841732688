#pragma once

#include <cstdint>
#include <vector>

namespace qv3 {

/// How much of each pixel a pen line covers, held by pixel column. Made for a recorder's trace: a
/// long line of short pieces that is another one with every frame and touches few pixels of each
/// column, where drawing and wiping must cost in proportion to the line and not to the sheet.
class PenLine {
 public:
  struct Point {
    double x;  ///< pixels from the left, pixel centres at halves
    double y;  ///< pixels from the top
  };

  /// Rows [first, last) of a column; empty where first >= last.
  struct Rows {
    int first = 0;
    int last = 0;

    bool isEmpty() const { return first >= last; }
    int count() const { return last - first; }
  };

  static constexpr double kWidest = 40;

  /// Most columns are crossed once and not steeply, and have no more rows than this.
  static constexpr int kBlock = 8;

  void resize(int width, int height);
  /// Wipes the line. `before` takes the rows it had.
  void clear(std::vector<Rows>& before);

  /// Adds a line through the points, `penWidth` pixels across (held within 0..kWidest). Joins are
  /// round, ends flat. x may not fall from one point to the next; all numbers are finite.
  void draw(const std::vector<Point>& points, double penWidth);

  int width() const { return m_width; }
  int height() const { return m_height; }

  /// By column: the rows beyond which nothing is covered.
  const std::vector<Rows>& rows() const { return m_rows; }

  /// Coverage 0..255 by row, of which only the column's rows mean something.
  const std::uint8_t* coverage(int column) const { return m_coverage.data() + offset(column); }

 private:
  struct Piece;
  struct Strip;

  std::size_t offset(int column) const {
    return static_cast<std::size_t>(column) * static_cast<std::size_t>(m_height + kBlock);
  }
  void divide(Piece& piece) const;
  void scanEnds(const Piece& piece);
  void scanInside(const Piece& piece);
  void shadeMore(const Strip& strip, int column, std::int64_t middle);
  void shadeEnd(const Piece& piece, int column);
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
  /// Column after column, with a block to spare behind each; means something in m_rows only.
  std::vector<std::uint8_t> m_coverage;
  std::vector<Rows> m_rows;
};

}  // namespace qv3
