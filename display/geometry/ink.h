#pragma once

#include <cstdint>

#include "display/geometry/linecover.h"

namespace qv3 {

/// Part of a picture of 0xffRRGGBB pixels: `area` says which, in the picture's pixels.
struct PixelArea {
  std::uint32_t* first = nullptr;  ///< upper left pixel of the area
  int stride = 0;                  ///< pixels from one row to the next
  PixelRect area;
};

/// A round dot, in pixels.
struct Dot {
  dial::Point centre;
  double diameter = 0;
};

// Marks with soft edges. They are drawn here because the toolkit's line takes several times the
// work for the same pixels, and because the same pixels must be found again when they are wiped.

/// Blends the stroke over what is there. `colour` is 0xffRRGGBB.
void inkStroke(const PixelArea& target, const Stroke& stroke, std::uint32_t colour);

/// Gives every pixel that `inkStroke` would change wholly to `colour`.
void wipeStroke(const PixelArea& target, const Stroke& stroke, std::uint32_t colour);

void inkDot(const PixelArea& target, const Dot& dot, std::uint32_t colour);

}  // namespace qv3
