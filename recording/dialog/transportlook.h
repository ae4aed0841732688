#pragma once

#include <QColor>
#include <QPainter>
#include <QPalette>
#include <QRectF>

namespace qv3 {

/// `share` of the way from one colour to the other.
QColor blend(const QColor& from, const QColor& to, double share);

/// What is going on is shown in red.
inline constexpr QColor kRecordingRed{255, 0, 0};

/// Lines and fills in the colours of the window, so that the panel suits a light and a dark one.
struct TransportLook {
  explicit TransportLook(const QPalette& palette);

  QColor panelTop;
  QColor panelBottom;
  QColor edge;       ///< around keys, display and bar
  QColor highlight;  ///< the light on an upper edge
  QColor keyTop;
  QColor keyBottom;
  QColor display;
  QColor record;  ///< the red of the Record key
};

/// One device pixel, in logical ones.
double hairline(const QPainter& painter);

/// A box with round corners whose edge is one device pixel, at any pixel ratio.
void drawEdgedBox(QPainter& painter, const QRectF& box, double radius, const QColor& edge,
                  const QBrush& fill);

}  // namespace qv3
