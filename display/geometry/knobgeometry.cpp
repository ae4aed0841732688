#include "display/geometry/knobgeometry.h"

#include <algorithm>
#include <cmath>

#include "measure/numbers.h"

namespace qv3 {
namespace knob {
namespace {

using dial::kPi;
using dial::kTwoPi;

constexpr double kLeftEnd = 15.70795 / 4;    ///< 225 degrees
constexpr double kRightEnd = 21.99113 / 4;   ///< 315 degrees
constexpr double kTravel = 9.42477 / 2;      ///< 270 degrees
constexpr double kHalfNotch = 21.99113 / 8;  ///< from the pointer's axis to a side of its notch
constexpr int kLeftButton = 1;

Point polar(double radius, double angle) {
  return {radius * std::cos(angle), radius * std::sin(angle)};
}

double mouseAngle(double x, double y) {
  const double angle = std::atan(y / x);
  if (x < 0 && y != 0) return angle + kPi;
  if (x > 0 && y < 0) return angle + kTwoPi;
  return angle;
}

}  // namespace

Arc rim() {
  return {{0, 0}, kRimRadius, kRightEnd, kLeftEnd + kTwoPi - kRightEnd};
}

std::array<Line, kTicks> ticks() {
  std::array<Line, kTicks> lines{};
  const auto step = static_cast<float>((kLeftEnd + kPi / 4) / (kTicks - 1));
  auto angle = static_cast<float>(-kPi / 4);
  for (auto& line : lines) {
    line = {polar(kRimRadius, angle), polar(kTickRadius, angle)};
    angle += step;
  }
  return lines;
}

double pointerAngle(int index) {
  const int left = kLastIndex - std::clamp(index, 0, kLastIndex);
  return left * kTravel / kLastIndex - kPi / 4;
}

Arc pointer(int index) {
  const double angle = pointerAngle(index);
  const float from = CAng(static_cast<float>(angle - kHalfNotch));
  return {polar(kPointerDistance, angle), kPointerRadius, from, 2 * kHalfNotch};
}

std::optional<int> indexAt(double x, double y, int button) {
  if (button != kLeftButton || x == 0 || !std::isfinite(x) || !std::isfinite(y)) {
    return std::nullopt;
  }
  double turn = kLeftEnd - mouseAngle(x, y);
  if (turn < 0) turn += kTwoPi;
  if (turn > kTravel) return x < 0 ? 0 : kLastIndex;
  return roundHalfEven(turn * kLastIndex / kTravel);
}

}  // namespace knob

knob::Point KnobSurface::toDevice(knob::Point p) const {
  return {(p.x + knob::kHalfSide) * scale(), (knob::kHalfSide - p.y) * scale()};
}

knob::Point KnobSurface::toKnob(knob::Point pixel) const {
  if (!(m_side > 0)) return {0, 0};
  return {pixel.x / scale() - knob::kHalfSide, knob::kHalfSide - pixel.y / scale()};
}

}  // namespace qv3
