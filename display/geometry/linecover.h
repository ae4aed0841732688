#pragma once

#include <vector>

#include "display/geometry/dialgeometry.h"

namespace qv3 {

struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// A straight stroke with flat ends, in pixels.
struct Stroke {
  dial::Line line;
  double width = 0;
};

/// Few pixel rectangles that contain every pixel the strokes touch, and a margin. A slanted
/// needle's own rectangle is a quarter of the dial; these follow it in bands of rows. They do not
/// overlap, are sorted by row and column, and those of a band start and end in the same rows.
std::vector<PixelRect> coverOf(const std::vector<Stroke>& strokes, int margin, int bandHeight);

}  // namespace qv3
