#include "recording/dialog/transportlook.h"

namespace qv3 {
namespace {

constexpr double kEdge = 0.34;  ///< of the way from the face to the text

}  // namespace

QColor blend(const QColor& from, const QColor& to, double share) {
  const auto mix = [share](int a, int b) { return qRound(a + share * (b - a)); };
  return {mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue())};
}

TransportLook::TransportLook(const QPalette& palette) {
  const QColor window = palette.color(QPalette::Window);
  const QColor text = palette.color(QPalette::WindowText);
  const QColor face = palette.color(QPalette::Button);
  const bool dark = window.lightness() < text.lightness();
  panelTop = blend(window, Qt::white, dark ? 0.04 : 0.25);
  panelBottom = blend(window, Qt::black, dark ? 0.12 : 0.05);
  edge = dark ? blend(window, Qt::black, 0.55) : blend(window, text, kEdge);
  highlight = blend(face, Qt::white, dark ? 0.16 : 0.75);
  keyTop = blend(face, Qt::white, dark ? 0.09 : 0.55);
  keyBottom = blend(face, Qt::black, dark ? 0.10 : 0.07);
  display = palette.color(QPalette::Base);
  const bool darkKeys = face.lightness() < palette.color(QPalette::ButtonText).lightness();
  record = darkKeys ? QColor(255, 96, 96) : QColor(214, 20, 20);
}

double hairline(const QPainter& painter) {
  const double scale = painter.device()->devicePixelRatioF();
  return qMax(1.0, std::floor(scale)) / scale;
}

void drawEdgedBox(QPainter& painter, const QRectF& box, double radius, const QColor& edge,
                  const QBrush& fill) {
  const double line = hairline(painter);
  painter.setPen(Qt::NoPen);
  painter.setBrush(edge);
  painter.drawRoundedRect(box, radius, radius);
  painter.setBrush(fill);
  painter.drawRoundedRect(box.adjusted(line, line, -line, -line), radius - line, radius - line);
}

}  // namespace qv3
