#pragma once

#include <QColor>
#include <QFont>

#include "measure/colour.h"

namespace qv3 {

inline QColor toQColor(Colour colour) {
  const Channels c = unpack(colour);
  return {c.red, c.green, c.blue};
}

/// The font of every read-out, asked for by its own name; which face answers is the business of
/// the font substitution set up at start. At least one pixel high.
inline QFont readoutFont(double pixelSize) {
  QFont font(QStringLiteral("Aerial"));
  font.setPixelSize(qMax(1, qRound(pixelSize)));
  return font;
}

}  // namespace qv3
