#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>
#include <cstdint>
#include <vector>

#include "display/dialcanvas.h"
#include "display/geometry/ink.h"

namespace qv3 {

/// What moves on the meter panel, in device pixels: needle, shadow or opposite arm, and the lamp.
struct DialMarks {
  struct Arm {
    Stroke stroke;
    std::uint32_t colour = 0;  ///< 0xffRRGGBB
  };
  struct Lamp {
    Dot dot;
    std::uint32_t colour = 0;
  };

  std::vector<Arm> arms;
  std::vector<Lamp> lamps;
};

/// The pixels of a rectangle of a picture in QImage::Format_RGB32.
PixelArea pixelArea(QImage& picture, const QRect& rect);

/// Puts the marks over the kept face on their way to the window, strip by strip, so that neither
/// the face nor the window ever shows one without the other. Owns the strip's memory.
class DialCompositor {
 public:
  /// Paints one rectangle, given in logical pixels, of the widget that `painter` paints on.
  void paint(QPainter& painter, const QRect& rect, const QImage& face, qreal ratio,
             const DialMarks& marks);

 private:
  void paintStrip(QPainter& painter, const QRect& pixels, const QImage& face,
                  const DialMarks& marks);

  std::vector<std::uint32_t> m_strip;
};

}  // namespace qv3
