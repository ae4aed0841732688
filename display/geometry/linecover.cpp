#include "display/geometry/linecover.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qv3 {

namespace {

using dial::Line;
using dial::Point;

struct Span {
  int from;
  int to;
};

/// The stroke as a box around its line: how far it reaches beyond it along x and y.
struct Body {
  Line line;  ///< from.y <= to.y
  double reachX;
  double reachY;

  double top() const { return line.from.y - reachY; }
  double bottom() const { return line.to.y + reachY; }
};

Body bodyOf(const Stroke& stroke, int margin) {
  Line line = stroke.line;
  if (line.from.y > line.to.y) std::swap(line.from, line.to);
  const double dx = line.to.x - line.from.x;
  const double dy = line.to.y - line.from.y;
  const double length = std::hypot(dx, dy);
  const double half = stroke.width / 2;
  const double acrossX = length > 0 ? half * std::abs(dy) / length : half;
  const double acrossY = length > 0 ? half * std::abs(dx) / length : half;
  return {line, acrossX + margin, acrossY + margin};
}

/// The x range of the body within rows [top, bottom).
Span spanIn(const Body& body, double top, double bottom) {
  const Point a = body.line.from;
  const Point b = body.line.to;
  const double dy = b.y - a.y;
  const auto xAt = [&](double y) {
    return dy > 0 ? a.x + (b.x - a.x) * std::clamp((y - a.y) / dy, 0.0, 1.0) : a.x;
  };
  double x1 = dy > 0 ? xAt(top - body.reachY) : a.x;
  double x2 = dy > 0 ? xAt(bottom + body.reachY) : b.x;
  if (x1 > x2) std::swap(x1, x2);
  return {static_cast<int>(std::floor(x1 - body.reachX)),
          static_cast<int>(std::ceil(x2 + body.reachX))};
}

void addBand(std::vector<PixelRect>& rects, std::vector<Span>& spans, int top, int bottom) {
  std::sort(spans.begin(), spans.end(), [](Span a, Span b) { return a.from < b.from; });
  Span open = spans.front();
  for (const Span span : spans) {
    if (span.from > open.to) {
      rects.push_back({open.from, top, open.to - open.from, bottom - top});
      open = span;
    }
    open.to = std::max(open.to, span.to);
  }
  rects.push_back({open.from, top, open.to - open.from, bottom - top});
}

}  // namespace

std::vector<PixelRect> coverOf(const std::vector<Stroke>& strokes, int margin, int bandHeight) {
  if (strokes.empty()) return {};
  std::vector<Body> bodies;
  for (const Stroke& stroke : strokes) bodies.push_back(bodyOf(stroke, margin));
  double top = bodies.front().top();
  double bottom = bodies.front().bottom();
  for (const Body& body : bodies) {
    top = std::min(top, body.top());
    bottom = std::max(bottom, body.bottom());
  }
  const int last = static_cast<int>(std::ceil(bottom));
  std::vector<PixelRect> rects;
  std::vector<Span> spans;
  for (int y = static_cast<int>(std::floor(top)); y < last; y += bandHeight) {
    const int end = std::min(y + bandHeight, last);
    spans.clear();
    for (const Body& body : bodies) {
      if (body.top() < end && body.bottom() > y) spans.push_back(spanIn(body, y, end));
    }
    if (!spans.empty()) addBand(rects, spans, y, end);
  }
  return rects;
}

}  // namespace qv3
