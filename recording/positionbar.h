#pragma once

#include <optional>

namespace qv3 {

/// What the position bar shows.
enum class BarFace {
  Clear,      ///< nothing
  Range,      ///< the block between the range markers, and how far it was played
  Recording,  ///< red, with its block
  Work        ///< how much of a file was read or written
};

/// What the position bar is good for at the moment.
enum class BarUse { None, Seek, Range };

/// A part of the session, as places on the bar.
struct BarRange {
  int from = 0;
  int to = 1000;

  bool operator==(const BarRange&) const = default;
};

/// What there is to draw. Places go from 0 to 1000.
struct BarState {
  BarFace face = BarFace::Clear;
  BarRange range;
  std::optional<double> place;  ///< played, read or written up to here
  int shortest = 1;             ///< a range less wide would be the whole session again
};

/// Pixels; `right` and `bottom` are the first beyond the box. A box without extent is all zero.
struct BarBox {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  bool empty() const { return left >= right || top >= bottom; }
  bool operator==(const BarBox&) const = default;
};

/// What is drawn, in pixels, the progress over the block. Two equal pictures look the same.
struct BarPicture {
  BarFace face = BarFace::Clear;
  BarBox block;
  BarBox progress;

  bool operator==(const BarPicture&) const = default;
};

/// A bar of 1000 by 100 units on so many pixels.
class BarGeometry {
 public:
  static constexpr int kWidth = 1000;
  static constexpr int kHeight = 100;

  BarGeometry(int width, int height) : m_width(width), m_height(height) {}

  /// The edge between two columns that lies nearest to a place.
  int column(double x) const;
  int row(double y) const;

  /// The place under a column. The first column is 0 and the last one 1000, so that a mouse reaches
  /// both ends; `column` of a place is an edge of the column it was read from, to the unit.
  /// Columns outside the bar are the end nearest to them.
  int placeAt(double column) const;

  BarPicture picture(const BarState& state) const;

 private:
  BarBox box(double fromX, double fromY, double toX, double toY) const;

  int m_width;
  int m_height;
};

/// A range on its way: the mouse was pressed, is moved and will be released.
class BarDrag {
 public:
  void press(int x);
  /// False if nothing changed, or no button is held.
  bool move(int x);
  /// What was dragged over, in the order of the drag; nothing without movement.
  std::optional<BarRange> release();
  void cancel() { m_from.reset(); }

  bool active() const { return m_from.has_value(); }
  /// Sorted; nothing until the mouse has moved.
  std::optional<BarRange> preview() const;

 private:
  std::optional<int> m_from;
  int m_to = 0;
};

enum class BarKey { Left, Right, PageLeft, PageRight, First, Last };

/// What a key on the bar asks for: another range, or with equal ends a place to go to.
struct BarRequest {
  BarUse use = BarUse::None;
  BarRange range;

  bool operator==(const BarRequest&) const = default;
};

/// During playback a key moves the place, inside the range; else it moves the range's begin, with
/// `shift` its end, and leaves the range its shortest width. Nothing where that changes nothing.
std::optional<BarRequest> barKey(BarKey key, bool shift, BarUse use, const BarState& state);

}  // namespace qv3
