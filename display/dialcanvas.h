#pragma once

#include <QImage>
#include <QPointF>
#include <QSize>

#include "display/dialstyle.h"
#include "display/geometry/dialgeometry.h"

namespace qv3 {

/// The surface a meter panel is painted on. Both numbers are the key of a picture kept of it: a
/// picture by its logical size alone is blurred, or redrawn for ever, at other pixel ratios.
struct Surface {
  QSize size;  ///< logical pixels
  qreal ratio = 1;

  QSize pixels() const { return {qCeil(size.width() * ratio), qCeil(size.height() * ratio)}; }
  bool operator==(const Surface&) const = default;
};

/// A surface with the look and the scale of what is painted on it, in device pixels.
struct DialCanvas {
  DialCanvas(const Surface& onSurface, const DialStyle& inStyle)
      : style(inStyle),
        face(dial::drawnFace(inStyle.DialType, inStyle.ScaleType)),
        ratio(onSurface.ratio),
        map(onSurface.size.width() * onSurface.ratio, onSurface.size.height() * onSurface.ratio) {}

  QPointF at(dial::Point p) const {
    const dial::Point pixel = map.at(p);
    return {pixel.x, pixel.y};
  }
  QLineF at(const dial::Line& line) const { return {at(line.from), at(line.to)}; }
  double pen(double logicalPixels) const { return logicalPixels * ratio; }

  DialStyle style;
  dial::Face face;  ///< that is drawn
  qreal ratio;
  PanelMap map;
};

}  // namespace qv3
