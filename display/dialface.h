#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>
#include <optional>

#include "display/dialcanvas.h"
#include "display/dialreadouts.h"
#include "display/geometry/linecover.h"

namespace qv3 {

/// All that stands still on the meter panel, kept as one picture in device pixels: the face, its
/// scale and the read-outs. What a needle wiped beyond the bare dial stays wiped until the face is
/// drawn again.
class DialFace {
 public:
  bool isDrawnFor(const Surface& surface) const { return m_canvas && m_surface == surface; }

  /// The face afresh with all read-outs.
  void draw(const Surface& surface, const DialStyle& style, DialReadouts& readouts);
  void forget() { m_canvas.reset(); }

  // The rest needs a drawn face. Lengths and rectangles are device pixels.

  const QImage& picture() const { return m_picture; }
  const DialCanvas& canvas() const { return *m_canvas; }

  /// Prints one read-out anew; `printing` is one of the read-outs' own procedures.
  using Printing = QRect (DialReadouts::*)(QPainter&, const DialCanvas&);
  QRect print(DialReadouts& readouts, Printing printing);

  /// The dial colour where a needle was, and the mode line printed again.
  void wipe(const Stroke& needle, DialReadouts& readouts);

  /// The whole area of the needle in the dial colour, then hub and mode line. Changes nothing on a
  /// face on which no wipe went beyond the bare dial, and says so with false.
  bool wipeNeedleArea(DialReadouts& readouts);

 private:
  void drawArcFace(QPainter& painter) const;
  void drawRoundFace(QPainter& painter) const;
  void drawScale(QPainter& painter) const;
  void drawHub(QPainter& painter) const;
  QPen pen(Colour colour, double logicalWidth) const;
  void setFill(QPainter& painter, Colour colour, double outline) const;
  QPainterPath sector(const dial::Arc& arc, bool closed) const;
  void circle(QPainter& painter, dial::Point centre, double radius) const;

  Surface m_surface;
  std::optional<DialCanvas> m_canvas;
  QImage m_picture;
  bool m_marred = false;  ///< something other than the face as drawn is in the needle's area
};

}  // namespace qv3
