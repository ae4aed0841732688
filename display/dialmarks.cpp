#include "display/dialmarks.h"

#include <cstring>

namespace qv3 {

namespace {

/// Device pixels; bounds the strip's memory where a whole window is exposed.
constexpr int kStripRows = 64;

}  // namespace

PixelArea pixelArea(QImage& picture, const QRect& rect) {
  const int stride = static_cast<int>(picture.bytesPerLine() / 4);
  auto* const pixels = reinterpret_cast<std::uint32_t*>(picture.bits());
  return {pixels + static_cast<std::ptrdiff_t>(rect.y()) * stride + rect.x(),
          stride,
          {rect.x(), rect.y(), rect.width(), rect.height()}};
}

void DialCompositor::paint(QPainter& painter, const QRect& rect, const QImage& face, qreal ratio,
                           const DialMarks& marks) {
  // One rectangle at a time is the painter's fast way; a clip of many is several times slower.
  painter.resetTransform();
  painter.setClipRect(rect);
  if (ratio != 1) painter.scale(1 / ratio, 1 / ratio);
  const QRectF exact(QPointF(rect.topLeft()) * ratio, QSizeF(rect.size()) * ratio);
  const QRect pixels = exact.toAlignedRect() & face.rect();
  for (int y = pixels.top(); y <= pixels.bottom(); y += kStripRows) {
    const int rows = qMin(kStripRows, pixels.bottom() + 1 - y);
    paintStrip(painter, {pixels.x(), y, pixels.width(), rows}, face, marks);
  }
}

void DialCompositor::paintStrip(QPainter& painter, const QRect& pixels, const QImage& face,
                                const DialMarks& marks) {
  const auto width = static_cast<std::size_t>(pixels.width());
  const std::size_t size = width * static_cast<std::size_t>(pixels.height());
  if (m_strip.size() < size) m_strip.resize(size);
  const uchar* from = face.constScanLine(pixels.y()) + pixels.x() * 4;
  const auto stride = face.bytesPerLine();
  std::uint32_t* to = m_strip.data();
  for (int row = 0; row < pixels.height(); ++row) {
    std::memcpy(to, from, width * sizeof(std::uint32_t));
    from += stride;
    to += width;
  }
  const PixelArea strip{
      m_strip.data(), pixels.width(), {pixels.x(), pixels.y(), pixels.width(), pixels.height()}};
  for (const DialMarks::Arm& arm : marks.arms) inkStroke(strip, arm.stroke, arm.colour);
  for (const DialMarks::Lamp& lamp : marks.lamps) inkDot(strip, lamp.dot, lamp.colour);
  const QImage image(reinterpret_cast<const uchar*>(m_strip.data()), pixels.width(),
                     pixels.height(), pixels.width() * 4, QImage::Format_RGB32);
  painter.drawImage(pixels.topLeft(), image);
}

}  // namespace qv3
