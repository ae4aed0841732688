#include "display/geometry/dialgeometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace qv3 {

float CAng(float angle) {
  constexpr float kTurn = 6.28318F;
  if (angle == 0) return 0.00001F;
  if (angle < 0) return angle + kTurn;
  if (angle > kTurn) return angle - kTurn;
  return angle;
}

namespace dial {

namespace {

constexpr double kSpan = kScaleSpan;
constexpr double kScaleStart = kStraightUp - kSpan / 2;
constexpr double kScaleEnd = kStraightUp + kSpan / 2;
constexpr double kScaleRadius = 1020;
constexpr double kOuterScaleRadius = 1070;
constexpr double kRoundScaleRadius = 550;

constexpr double kSetMarkFromUp = 0.239972;  ///< left of straight up
constexpr double kUnitsOfTurn = 65536;

struct Reach {
  double from;
  double to;
};

Reach needleReach(int dialType) {
  return faceOf(dialType) == Face::Round ? Reach{50, 500} : Reach{500, kArcReach};
}

Point polar(double radius, double angle) {
  return {radius * std::cos(angle), radius * std::sin(angle)};
}

/// `angle` clockwise from straight up.
Point clockwise(Point centre, double radius, double angle) {
  return {centre.x + radius * std::sin(angle), centre.y + radius * std::cos(angle)};
}

std::vector<Line> arcTicks(int scaleType) {
  const bool fine = scaleType == 0;
  const int last = fine ? 40 : 8;
  std::vector<Line> ticks;
  for (int k = 0; k <= last; ++k) {
    const double angle = kScaleStart + k * (kSpan / last);
    const double fineEnd = k % 2 == 0 ? kOuterScaleRadius : 1040;
    ticks.push_back({polar(kScaleRadius, angle), polar(fine ? fineEnd : 1050, angle)});
  }
  return ticks;
}

std::vector<Line> roundTicks(int scaleType) {
  const int count = scaleType == 0 ? 40 : 16;
  const Reach reach = scaleType == 0 ? Reach{kRoundScaleRadius, kRoundFaceRadius} : Reach{535, 560};
  const auto step = static_cast<float>(kTwoPi / count);
  const Point middle = centre(Face::Round);
  std::vector<Line> ticks;
  float angle = 0;
  for (int k = 0; k < count; ++k, angle += step) {
    const double a = angle;
    ticks.push_back({clockwise(middle, reach.from, a), clockwise(middle, reach.to, a)});
  }
  return ticks;
}

Line needleAt(int dialType, std::int32_t value, double side) {
  const double angle = value * kTwoPi / kUnitsOfTurn;
  const Reach reach = needleReach(dialType);
  const Point middle = centre(faceOf(dialType));
  return {clockwise(middle, side * reach.from, angle), clockwise(middle, side * reach.to, angle)};
}

}  // namespace

Face faceOf(int dialType) {
  if (dialType == 1 || dialType == 2) return Face::Arc;
  if (dialType == 0 || dialType == 3) return Face::Round;
  return Face::None;
}

Face drawnFace(int dialType, int scaleType) {
  return scaleType == 0 || scaleType == 1 ? faceOf(dialType) : Face::None;
}

Point centre(Face face) {
  return {0, face == Face::Round ? 600.0 : 0.0};
}

std::vector<Arc> scaleArcs(Face face, int scaleType) {
  if (face == Face::Round && scaleType == 0) return {{kRoundScaleRadius, 0, kTwoPi}};
  if (face != Face::Arc) return {};
  if (scaleType == 0) {
    const double gapFrom = kStraightUp + kSpan / 10;
    const double gapTo = kStraightUp + 5.7595816 / 20;
    return {{kScaleRadius, kScaleStart, gapFrom},
            {kScaleRadius, gapTo, kScaleEnd},
            {kOuterScaleRadius, kScaleStart, gapFrom},
            {kOuterScaleRadius, gapTo, kScaleEnd}};
  }
  const double half = kSpan / 2;
  return {{kScaleRadius, kScaleEnd, kStraightUp + 1.05 * half},
          {kScaleRadius, kStraightUp - 1.05 * half, kScaleStart},
          {kScaleRadius, kStraightUp + half * 15 / 64, kStraightUp + half * 17 / 64}};
}

std::vector<Line> scaleTicks(Face face, int scaleType) {
  if (face == Face::Arc) return arcTicks(scaleType);
  if (face == Face::Round) return roundTicks(scaleType);
  return {};
}

Arc faceSector() {
  return {kFaceRadius, kStraightUp - kSpan / 1.8, kStraightUp + kSpan / 1.8};
}

Arc wipedSector() {
  return {kArcReach, kStraightUp - kSpan / 1.8, kStraightUp + kSpan / 1.8};
}

Arc wipedCutOut() {
  return {kCutOutRadius, kStraightUp - kSpan / 1.7, kStraightUp + kSpan / 1.7};
}

Lamp lamp(int dialType, double panelWidth) {
  switch (faceOf(dialType)) {
    case Face::Round:
      return {centre(Face::Round), std::nearbyint(panelWidth / 50)};
    case Face::Arc:
      return {clockwise({0, 0}, kOuterScaleRadius, -kSetMarkFromUp),
              std::nearbyint(panelWidth / 60)};
    case Face::None:
      break;
  }
  return {{0, 0}, 1};
}

Line needle(int dialType, std::int32_t value) {
  return needleAt(dialType, value, 1);
}

Line oppositeArm(int dialType, std::int32_t value) {
  return needleAt(dialType, value, -1);
}

std::int32_t shadowValue(std::int32_t value) {
  constexpr std::int32_t kScaleWidth = 14016;
  if (value > 0) return value - kScaleWidth;
  if (value < 0) return value + kScaleWidth;
  return 0;
}

bool shadowShown(bool shown, std::int32_t value) {
  const std::int64_t size = std::abs(static_cast<std::int64_t>(value));
  if (size > 6000) return true;
  if (size < 4000) return false;
  return shown;
}

bool onBareDial(Face drawn, const Line& needle, double halfWidth) {
  if (drawn != Face::Arc) return drawn == Face::Round;
  // Seen from the centre the inner end is the one nearest to the sides of the sector.
  constexpr double kHalf = kSpan / 1.8;
  const double fromSide =
      std::sin(kHalf) * needle.from.y - std::cos(kHalf) * std::abs(needle.from.x);
  return fromSide >= halfWidth;
}

int percentFromSet(std::int32_t value) {
  constexpr double kSetMark = -2503;
  constexpr double kScaleWidth = kSpan / kTwoPi * kUnitsOfTurn;
  return static_cast<int>(std::lround((value - kSetMark) / kScaleWidth * 100));
}

int degreesFromSet(std::int32_t value) {
  return static_cast<int>(std::lround(static_cast<std::int16_t>(value) * 360 / kUnitsOfTurn));
}

}  // namespace dial

PanelMap::PanelMap(double surfaceWidth, double surfaceHeight)
    : m_scale(std::max(0.0, std::min(surfaceWidth / dial::kWidth, surfaceHeight / dial::kHeight))),
      m_origin{(surfaceWidth - dial::kWidth * m_scale) / 2 - dial::kLeft * m_scale,
               (surfaceHeight - dial::kHeight * m_scale) / 2 + dial::kTop * m_scale} {}

dial::Point PanelMap::at(dial::Point p) const {
  return {m_origin.x + p.x * m_scale, m_origin.y - p.y * m_scale};
}

}  // namespace qv3
