#include "display/geometry/ink.h"

#include <algorithm>
#include <cmath>

namespace qv3 {

namespace {

/// Pixels in fixed point: a needle is inked fifty times a second, and its rows are walked in steps.
using Fixed = std::int32_t;
constexpr int kShift = 16;
constexpr Fixed kOne = 1 << kShift;

Fixed fixed(double pixels) {
  return static_cast<Fixed>(std::lround(pixels * kOne));
}

class Ink {
 public:
  explicit Ink(std::uint32_t colour)
      : m_colour(colour), m_even(colour & kEven), m_odd(colour >> 8 & kEven) {}

  /// Coverage from 0 to kOne, in 256 steps. Two channels go through one multiplication.
  void operator()(std::uint32_t& pixel, Fixed coverage) const {
    const auto share = static_cast<std::uint32_t>(coverage) >> (kShift - 8);
    const std::uint32_t even = pixel & kEven;
    const std::uint32_t odd = pixel >> 8 & kEven;
    pixel = ((even + ((m_even - even) * share >> 8)) & kEven) |
            (((odd << 8) + (m_odd - odd) * share) & ~kEven);
  }
  void whole(std::uint32_t& pixel) const { pixel = m_colour; }

 private:
  static constexpr std::uint32_t kEven = 0xff00ffU;

  std::uint32_t m_colour;
  std::uint32_t m_even;
  std::uint32_t m_odd;
};

struct Wipe {
  std::uint32_t colour;
  void operator()(std::uint32_t& pixel, Fixed) const { pixel = colour; }
  void whole(std::uint32_t& pixel) const { pixel = colour; }
};

/// A row of an area: its pixel in column 0 and the columns it has.
struct Row {
  std::uint32_t* pixels;
  int first;
  int end;
};

/// A stroke by the distance of pixel centres from its middle line and from its ends.
class StrokeBody {
 public:
  explicit StrokeBody(const Stroke& stroke);

  int firstRow() const { return m_firstRow; }
  int endRow() const { return m_endRow; }

  template <typename Touch>
  void coverRow(int y, const Row& row, Touch touch) const {
    if (y >= m_firstClearRow && y < m_endClearRow) {
      coverClearRow(y, row, touch);
    } else {
      coverEndRow(y, row, touch);
    }
  }

 private:
  /// No end is near: soft edge, wholly covered, soft edge. The members are copied, or they would
  /// be read again after every pixel written.
  template <typename Touch>
  void coverClearRow(int y, const Row& row, Touch touch) const {
    const Fixed step = m_steepness;
    const Fixed reach = m_reach;
    const Fixed inner = m_inner;
    const std::int64_t middle = m_middle + y * m_slope;
    const int first = std::max(row.first, static_cast<int>((middle - m_aside) >> kShift));
    const std::int64_t fromMiddle = std::int64_t{first} * kOne + kOne / 2 - middle;
    auto across = static_cast<Fixed>(fromMiddle * step >> kShift);
    std::uint32_t* pixel = row.pixels + first;
    std::uint32_t* const end = row.pixels + row.end;
    for (; pixel < end && across <= -reach; ++pixel) across += step;
    for (; pixel < end && across < -inner; ++pixel, across += step) touch(*pixel, reach + across);
    for (; pixel < end && across <= inner; ++pixel, across += step) touch.whole(*pixel);
    for (; pixel < end && across < reach; ++pixel, across += step) touch(*pixel, reach - across);
  }

  template <typename Touch>
  void coverEndRow(int y, const Row& row, Touch touch) const {
    const double dy = y + 0.5 - m_from.y;
    const std::int64_t middle = m_middle + y * m_slope;
    const int end = std::min(row.end, static_cast<int>((middle + m_aside) >> kShift) + 1);
    for (int x = std::max(row.first, static_cast<int>((middle - m_aside) >> kShift)); x < end;
         ++x) {
      const double dx = x + 0.5 - m_from.x;
      const double across = std::abs(dx * m_alongY - dy * m_alongX);
      const double along = dx * m_alongX + dy * m_alongY;
      const double aside = std::clamp(m_width / 2 + 0.5 - across, 0.0, 1.0);
      const double within = std::clamp(std::min(along, m_length - along) + 0.5, 0.0, 1.0);
      const Fixed coverage = fixed(aside * within);
      if (coverage > 0) touch(row.pixels[x], coverage);
    }
  }

  void findExtent(dial::Point to);

  dial::Point m_from;
  double m_alongX = 0;  ///< direction, of length 1
  double m_alongY = 1;
  double m_length = 0;
  double m_width = 0;

  int m_firstRow = 0;
  int m_endRow = 0;
  int m_firstClearRow = 0;  ///< rows that no end comes near
  int m_endClearRow = 0;

  std::int64_t m_middle = 0;  ///< column of the middle line in row 0
  std::int64_t m_slope = 0;   ///< columns a row
  std::int64_t m_aside = 0;   ///< columns from the middle line within reach
  Fixed m_steepness = 0;      ///< distance from column to column
  Fixed m_reach = 0;          ///< farther away nothing is covered
  Fixed m_inner = 0;          ///< nearer all of a pixel is
};

StrokeBody::StrokeBody(const Stroke& stroke) : m_from(stroke.line.from), m_width(stroke.width) {
  const dial::Point to = stroke.line.to;
  m_length = std::hypot(to.x - m_from.x, to.y - m_from.y);
  if (m_length > 0) {
    m_alongX = (to.x - m_from.x) / m_length;
    m_alongY = (to.y - m_from.y) / m_length;
  }
  findExtent(to);
}

void StrokeBody::findExtent(dial::Point to) {
  const double reach = m_width / 2 + 0.5;
  const double top = std::min(m_from.y, to.y);
  const double bottom = std::max(m_from.y, to.y);
  m_firstRow = static_cast<int>(std::floor(top - reach));
  m_endRow = static_cast<int>(std::ceil(bottom + reach));

  // In a nearly level line an end cuts through all rows, and each has all columns.
  constexpr double kLevel = 0.02;
  const double steepness = std::abs(m_alongY);
  if (steepness < kLevel) {
    m_middle = std::llround(m_from.x * kOne);
    m_aside = std::llround((m_length + reach) * kOne);
    return;
  }
  const double cut = reach * std::abs(m_alongX) + 1;
  m_firstClearRow = static_cast<int>(std::ceil(top + cut));
  m_endClearRow = static_cast<int>(std::floor(bottom - cut));
  const double slope = m_alongX / m_alongY;
  m_slope = std::llround(slope * kOne);
  m_middle = std::llround((m_from.x + (0.5 - m_from.y) * slope) * kOne);
  m_aside = std::llround(reach / steepness * kOne);
  m_steepness = fixed(steepness);
  m_reach = fixed(reach);
  m_inner = std::max(0, m_reach - kOne);
}

template <typename Touch>
void forEachPixel(const PixelArea& target, const Stroke& stroke, Touch touch) {
  const StrokeBody body(stroke);
  const PixelRect& area = target.area;
  const int end = std::min(body.endRow(), area.y + area.height);
  for (int y = std::max(body.firstRow(), area.y); y < end; ++y) {
    std::uint32_t* const pixels =
        target.first + static_cast<std::ptrdiff_t>(y - area.y) * target.stride - area.x;
    body.coverRow(y, {pixels, area.x, area.x + area.width}, touch);
  }
}

}  // namespace

void inkStroke(const PixelArea& target, const Stroke& stroke, std::uint32_t colour) {
  forEachPixel(target, stroke, Ink(colour));
}

void wipeStroke(const PixelArea& target, const Stroke& stroke, std::uint32_t colour) {
  forEachPixel(target, stroke, Wipe{colour});
}

void inkDot(const PixelArea& target, const Dot& dot, std::uint32_t colour) {
  const Ink ink(colour);
  const double radius = dot.diameter / 2;
  const PixelRect& area = target.area;
  const int top = std::max(area.y, static_cast<int>(std::floor(dot.centre.y - radius - 1)));
  const int bottom =
      std::min(area.y + area.height, static_cast<int>(std::ceil(dot.centre.y + radius + 1)));
  const int left = std::max(area.x, static_cast<int>(std::floor(dot.centre.x - radius - 1)));
  const int right =
      std::min(area.x + area.width, static_cast<int>(std::ceil(dot.centre.x + radius + 1)));
  for (int row = top; row < bottom; ++row) {
    std::uint32_t* const pixels =
        target.first + static_cast<std::ptrdiff_t>(row - area.y) * target.stride - area.x;
    for (int x = left; x < right; ++x) {
      const double distance = std::hypot(x + 0.5 - dot.centre.x, row + 0.5 - dot.centre.y);
      const Fixed coverage = fixed(radius + 0.5 - distance);
      if (coverage > 0) ink(pixels[x], std::min(coverage, kOne));
    }
  }
}

}  // namespace qv3
