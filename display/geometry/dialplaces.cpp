#include "display/geometry/dialplaces.h"

#include <cmath>

namespace qv3::dial {

namespace {

constexpr double kMargin = 20;  ///< texts keep off the panel's edge
constexpr double kBaseSize = 0.06 * kWidth;
constexpr double kModeSize = 0.015 * kWidth;
constexpr double kTimeSize = 0.04 * kWidth;
constexpr double kDateSize = 0.025 * kWidth;
constexpr double kLine = 1.2;  ///< from one line's top to the next, of the font's height
constexpr double kArcModeLine = 525;
constexpr double kRoundModeLine = 600;

/// The widest text that stays on the panel.
double roomAt(double x, bool centred) {
  const double toEdge = kRight - kMargin - (centred ? std::abs(x) : x);
  return centred ? 2 * toEdge : toEdge;
}

Place placed(Point at, bool centred, double size) {
  return {at, centred, size, roomAt(at.x, centred)};
}

Line spoke(const ClockFace& face, double from, double to, double turn) {
  const double a = turn * kTwoPi;
  const Point c = face.centre;
  return {{c.x + face.radius * from * std::sin(a), c.y + face.radius * from * std::cos(a)},
          {c.x + face.radius * to * std::sin(a), c.y + face.radius * to * std::cos(a)}};
}

}  // namespace

Place basePlace(bool clockLeft) {
  return placed({clockLeft ? 750.0 : -750.0, 1150}, true, kBaseSize);
}

Place modeWordPlace(Face face) {
  if (face == Face::Round) return placed({-800, kRoundModeLine}, true, kModeSize);
  return placed({-300, kArcModeLine}, false, kModeSize);
}

Place statusPlace(Face face) {
  if (face == Face::Round) return placed({800, kRoundModeLine}, true, kModeSize);
  return placed({-100, kArcModeLine}, false, kModeSize);
}

Place audioOffPlace(Face face) {
  if (face != Face::Round) return placed({225, kArcModeLine}, false, kModeSize);
  return placed({-800, kRoundModeLine - kLine * kModeSize}, true, kModeSize);
}

Place timePlace(bool clockLeft) {
  return placed({clockLeft ? -750.0 : 750.0, 1150}, true, kTimeSize);
}

Place datePlace(bool clockLeft) {
  return placed({clockLeft ? -750.0 : 750.0, 1150 - kLine * kTimeSize}, true, kDateSize);
}

ClockFace clockFace(bool clockLeft) {
  return {{clockLeft ? -810.0 : 810.0, 1010}, 170};
}

Line hourHand(const ClockFace& face, int hour, int minute) {
  return spoke(face, 0, 0.52, (hour % 12 + minute / 60.0) / 12);
}

Line minuteHand(const ClockFace& face, int minute) {
  return spoke(face, 0, 0.8, minute / 60.0);
}

std::vector<Line> hourMarks(const ClockFace& face) {
  std::vector<Line> marks;
  for (int hour = 0; hour < 12; ++hour) {
    marks.push_back(spoke(face, hour % 3 == 0 ? 0.82 : 0.9, 0.98, hour / 12.0));
  }
  return marks;
}

}  // namespace qv3::dial
