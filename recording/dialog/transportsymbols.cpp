#include "recording/dialog/transportsymbols.h"

#include <QPolygonF>

namespace qv3 {
namespace {

QPainterPath polygon(const QPolygonF& points) {
  QPainterPath path;
  path.addPolygon(points);
  path.closeSubpath();
  return path;
}

QPainterPath boxes(std::initializer_list<QRectF> rects) {
  QPainterPath path;
  path.setFillRule(Qt::WindingFill);
  for (const QRectF& rect : rects) path.addRect(rect);
  return path;
}

QPainterPath circle(const QPointF& centre, double radius) {
  QPainterPath path;
  path.addEllipse(centre, radius, radius);
  return path;
}

/// Points right with its back at `x`, `size` wide.
QPainterPath triangle(double x, double size, double halfHeight) {
  return polygon({{x, 12 - halfHeight}, {x + size, 12}, {x, 12 + halfHeight}});
}

QPainterPath mirrored(const QPainterPath& path) {
  return QTransform(-1, 0, 0, 1, kSymbolUnits, 0).map(path);
}

QPainterPath forward() {
  return triangle(3, 9, 7) | triangle(12, 9, 7);
}

/// From the start to the end and no further.
QPainterPath single() {
  return boxes({{2, 11, 10, 2}, {19, 5, 2.5, 14}}) | triangle(11, 7, 5.5);
}

/// A ring, open at the top, whose arrow leads back to the start.
QPainterPath loop() {
  QPainterPath ring;
  ring.arcMoveTo(QRectF(4, 4, 16, 16), 60);
  ring.arcTo(QRectF(4, 4, 16, 16), 60, -300);
  QPainterPathStroker pen;
  pen.setWidth(2.4);
  pen.setCapStyle(Qt::FlatCap);
  return pen.createStroke(ring) | polygon({{7.2, 0.4}, {14.6, 4.6}, {7.6, 9.4}});
}

QPainterPath tray() {
  return boxes({{3, 15, 2.4, 6}, {18.6, 15, 2.4, 6}, {3, 18.6, 18, 2.4}});
}

QPainterPath load() {
  return tray() | boxes({{10.8, 7, 2.4, 9}}) | polygon({{6.5, 9}, {12, 2.5}, {17.5, 9}});
}

QPainterPath save() {
  return tray() | boxes({{10.8, 2.5, 2.4, 8}}) | polygon({{6.5, 9}, {17.5, 9}, {12, 15.5}});
}

/// The tray and the dots of a question that follows.
QPainterPath saveAs() {
  return save() | circle({17, 4}, 1.4) | circle({21, 4}, 1.4);
}

/// Three faders.
QPainterPath settings() {
  return boxes({{4.9, 3, 2.2, 18}, {10.9, 3, 2.2, 18}, {16.9, 3, 2.2, 18}}) |
         boxes({{3, 13, 6, 4}, {9, 6, 6, 4}, {15, 10.5, 6, 4}});
}

}  // namespace

QPainterPath transportSymbol(TransportSymbol symbol) {
  switch (symbol) {
    case TransportSymbol::Record:
      return circle({12, 12}, 8);
    case TransportSymbol::Stop:
      return boxes({{5, 5, 14, 14}});
    case TransportSymbol::Play:
      return triangle(6, 14, 8.5);
    case TransportSymbol::Pause:
      return boxes({{5.5, 4, 4.5, 16}, {14, 4, 4.5, 16}});
    case TransportSymbol::Rev:
      return mirrored(forward());
    case TransportSymbol::Fwd:
      return forward();
    case TransportSymbol::Single:
      return single();
    case TransportSymbol::Loop:
      return loop();
    case TransportSymbol::Load:
      return load();
    case TransportSymbol::Save:
      return save();
    case TransportSymbol::SaveAs:
      return saveAs();
    case TransportSymbol::Settings:
      return settings();
  }
  return {};
}

}  // namespace qv3
