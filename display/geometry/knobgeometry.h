#pragma once

#include <array>
#include <optional>

#include "display/geometry/dialgeometry.h"

namespace qv3 {

/// The sensitivity knob in its own units: centre (0, 0), y upward, a square from -1.1 to 1.1.
/// Angles are radians, counter-clockwise from the +x axis.
namespace knob {

constexpr double kHalfSide = 1.1;
constexpr double kRimRadius = 0.9;
constexpr double kTickRadius = 0.7;  ///< inner end of a tick; the outer one is on the rim
constexpr double kHubRadius = 0.4;
constexpr double kPointerDistance = 0.65;
constexpr double kPointerRadius = 0.3;
constexpr double kLabelTop = -0.5;

constexpr int kTicks = 10;
constexpr int kLastIndex = 63;

using dial::Line;
using dial::Point;

struct Arc {
  Point centre;
  double radius;
  double from;   ///< start angle
  double sweep;  ///< counter-clockwise
};

/// 270 degrees over the top, open at the bottom.
Arc rim();

std::array<Line, kTicks> ticks();

/// 225 degrees for index 0 down to -45 degrees for index 63; an index outside is the nearest.
double pointerAngle(int index);

/// A disc whose 45-degree notch faces the knob's centre; its radii are drawn too.
Arc pointer(int index);

/// The index that a mouse press or move asks for. `button` is a mask of which the left button is
/// bit 0; only the left button alone counts. On the vertical axis there is none. The gap at the
/// bottom snaps to 0 on the left and 63 on the right; the negative x axis counts as angle 0.
std::optional<int> indexAt(double x, double y, int button);

}  // namespace knob

/// The square surface of the knob in pixels, y downward.
class KnobSurface {
 public:
  explicit KnobSurface(double side) : m_side(side) {}

  double scale() const { return m_side / (2 * knob::kHalfSide); }
  knob::Point toDevice(knob::Point p) const;
  /// (0, 0) on a surface without extent.
  knob::Point toKnob(knob::Point pixel) const;

 private:
  double m_side;
};

}  // namespace qv3
