#pragma once

#include <vector>

#include "display/geometry/dialgeometry.h"

namespace qv3::dial {

/// Where a text stands on the meter panel, in panel units.
struct Place {
  Point at;  ///< y is the text's top; x its left end, or its middle
  bool centred = false;
  double size = 0;  ///< height of the font
  double room = 0;  ///< widest it may be; a longer text shrinks to fit
};

/// The base reading, on the side away from the clock. The place is that of its sample text "0.00"
/// in the middle; any text starts where the sample does.
Place basePlace(bool clockLeft);

/// The three parts of the mode line. The arc dial has them on its face, so that the needle at rest
/// on the SET mark passes between the first two; the round dial beside it.
Place modeWordPlace(Face face);
Place statusPlace(Face face);
Place audioOffPlace(Face face);

Place timePlace(bool clockLeft);
Place datePlace(bool clockLeft);

/// The analogue clock. Its hands are lines from the centre outward.
struct ClockFace {
  Point centre;
  double radius = 0;
};
ClockFace clockFace(bool clockLeft);
Line hourHand(const ClockFace& face, int hour, int minute);
Line minuteHand(const ClockFace& face, int minute);
std::vector<Line> hourMarks(const ClockFace& face);

}  // namespace qv3::dial
