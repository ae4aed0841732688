#pragma once

#include <QPainter>
#include <QRect>
#include <QString>
#include <array>

#include "display/dialcanvas.h"
#include "display/dialstyle.h"
#include "display/geometry/dialplaces.h"

namespace qv3 {

/// The texts on the meter panel and its clock: what they say, and where on the kept picture each
/// was printed last, so that it is blanked whole before the next. Each printing takes a painter on
/// the picture in device pixels and returns the pixels it may have changed.
class DialReadouts {
 public:
  QString base;
  ModeReadout mode;
  ClockReadout clock;

  /// All of them on a picture that shows none.
  void printOn(QPainter& painter, const DialCanvas& canvas);

  QRect printBase(QPainter& painter, const DialCanvas& canvas);
  QRect printMode(QPainter& painter, const DialCanvas& canvas);
  QRect printClock(QPainter& painter, const DialCanvas& canvas);

  /// Where each was printed, in device pixels.
  const QRect& basePixels() const { return m_baseBox; }
  QRect modePixels() const { return m_modeBoxes[0] | m_modeBoxes[1] | m_modeBoxes[2]; }
  const QRect& clockPixels() const { return m_clockBox; }

  QString timeText() const;

 private:
  using Boxes = std::array<QRect, 3>;

  static QRect blank(QPainter& painter, const QRect& box, Colour colour);
  QRect blankClock(QPainter& painter, Colour colour) const;
  QRect printAnalogue(QPainter& painter, const DialCanvas& canvas) const;
  QRect printDigital(QPainter& painter, const DialCanvas& canvas) const;

  QRect m_baseBox;
  QRect m_clockBox;
  bool m_clockIsRound = false;  ///< the corners of its box are not its own
  Boxes m_modeBoxes;
};

}  // namespace qv3
