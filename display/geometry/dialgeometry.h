#pragma once

#include <cstdint>
#include <vector>

namespace qv3 {

/// An angle folded by one turn into 0..6.28318, single precision. An exact 0 becomes 0.00001:
/// callers negate the result to ask for a sector's radius, and a zero cannot carry that sign. More
/// than one turn off stays out of range.
float CAng(float angle);

/// The meter panel in its own units: x from -1000 to 1000, y upward from -50 to 1200. Angles are
/// radians, counter-clockwise from the +x axis; pi is 3.14159 wherever a position depends on it.
namespace dial {

constexpr double kLeft = -1000;
constexpr double kRight = 1000;
constexpr double kTop = 1200;
constexpr double kBottom = -50;
constexpr double kWidth = kRight - kLeft;
constexpr double kHeight = kTop - kBottom;

constexpr double kPi = 3.14159;
constexpr double kTwoPi = 6.28318;
constexpr double kStraightUp = 1.570795;
constexpr float kScaleSpan = 1.9198606F;  ///< of the arc dial's scale, 110 degrees

constexpr double kFaceRadius = 1104;   ///< arc dial
constexpr double kCutOutRadius = 465;  ///< arc dial: the face is the band outside of it
constexpr double kArcReach = 1000;     ///< of the arc dial's needle
constexpr double kRoundFaceRadius = 575;
constexpr double kHubRadius = 35;  ///< ring around the round dial's centre

struct Point {
  double x = 0;
  double y = 0;
};

struct Line {
  Point from;
  Point to;
};

/// Around the dial's centre, counter-clockwise from `from` to `to`.
struct Arc {
  double radius = 0;
  double from = 0;
  double to = 0;
};

/// Dial types 1 and 2 share the arc, 0 and 3 the round face.
enum class Face { None, Arc, Round };

/// The face that a needle of this type turns on, whether or not it is drawn.
Face faceOf(int dialType);

/// The face that is drawn: none for a scale type other than 0 and 1.
Face drawnFace(int dialType, int scaleType);

Point centre(Face face);

/// Pens are logical pixels. An empty list where the face has no such mark.
constexpr double kScalePen = 2;
constexpr double kHubPen = 3;
std::vector<Arc> scaleArcs(Face face, int scaleType);
std::vector<Line> scaleTicks(Face face, int scaleType);

/// The arc dial's face, and what a wipe of its needle area fills: first the needle's band in the
/// dial colour, then the cut-out, wider, so that it covers the inner ends of the band's sides.
Arc faceSector();
Arc wipedSector();
Arc wipedCutOut();
constexpr double kWipedDisc = 505;  ///< round dial

struct Lamp {
  Point at;
  double diameter = 0;  ///< logical pixels
};

/// The alert lamp on a panel so many logical pixels wide.
Lamp lamp(int dialType, double panelWidth);

// The needle: its value is 1/65536 of a turn, clockwise from straight up.

Line needle(int dialType, std::int32_t value);
/// The needle turned by half a turn, as type 3 shows it besides.
Line oppositeArm(int dialType, std::int32_t value);

/// Where the reading continues one scale width back, on the other side of the dial.
std::int32_t shadowValue(std::int32_t value);
/// Whether type 2 shows its shadow, given whether it did: from beyond 6000 on, until within 4000.
bool shadowShown(bool shown, std::int32_t value);

/// True if a needle of this width lies wholly on bare dial colour, where erasing it leaves no trace
/// (the mode line is printed again by whoever erases). Lengths in panel units.
bool onBareDial(Face drawn, const Line& needle, double halfWidth);

/// Needle position for a person. On the arc dial percent of the scale's width right of the SET
/// mark, on the round one degrees clockwise of it, -180 to 180.
int percentFromSet(std::int32_t value);
int degreesFromSet(std::int32_t value);

}  // namespace dial

/// The panel's units on a surface of pixels, y downward. Where the surface is not exactly 2000 to
/// 1250 the panel keeps its shape and stands in the middle.
class PanelMap {
 public:
  PanelMap(double surfaceWidth, double surfaceHeight);

  double width() const { return length(dial::kWidth); }
  double length(double units) const { return units * m_scale; }
  double units(double pixels) const { return m_scale > 0 ? pixels / m_scale : 0; }
  dial::Point at(dial::Point p) const;
  dial::Line line(const dial::Line& l) const { return {at(l.from), at(l.to)}; }

 private:
  double m_scale;
  dial::Point m_origin;  ///< pixel of the panel's (0, 0)
};

}  // namespace qv3
