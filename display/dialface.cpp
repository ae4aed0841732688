#include "display/dialface.h"

#include <QPainterPath>

#include "display/dialmarks.h"
#include "display/displaystyle.h"

namespace qv3 {

namespace {

double degrees(double radians) {
  return radians / dial::kPi * 180;
}

}  // namespace

void DialFace::draw(const Surface& surface, const DialStyle& style, DialReadouts& readouts) {
  m_surface = surface;
  m_canvas.emplace(surface, style);
  if (m_picture.size() != surface.pixels()) {
    m_picture = QImage(surface.pixels(), QImage::Format_RGB32);
  }
  m_picture.fill(toQColor(style.Panel_Color));
  m_marred = m_canvas->face == dial::Face::None;
  QPainter painter(&m_picture);
  painter.setRenderHint(QPainter::Antialiasing);
  if (m_canvas->face == dial::Face::Arc) drawArcFace(painter);
  if (m_canvas->face == dial::Face::Round) drawRoundFace(painter);
  drawScale(painter);
  readouts.printOn(painter, *m_canvas);
}

void DialFace::drawArcFace(QPainter& painter) const {
  const double outlineWidth = m_canvas->style.ScaleType == 0 ? 1 : 2;
  painter.setPen(pen(m_canvas->style.Panel_Color, outlineWidth));
  painter.setBrush(toQColor(m_canvas->style.Dial_Color));
  painter.drawPath(sector(dial::faceSector(), true));
  painter.setBrush(toQColor(m_canvas->style.Panel_Color));
  circle(painter, dial::centre(dial::Face::Arc), dial::kCutOutRadius);
}

void DialFace::drawRoundFace(QPainter& painter) const {
  setFill(painter, m_canvas->style.Dial_Color, 1);
  circle(painter, dial::centre(dial::Face::Round), dial::kRoundFaceRadius);
  drawHub(painter);
}

void DialFace::drawScale(QPainter& painter) const {
  const int type = m_canvas->style.ScaleType;
  painter.setPen(pen(m_canvas->style.Scale_Color, dial::kScalePen));
  painter.setBrush(Qt::NoBrush);
  for (const dial::Arc& arc : dial::scaleArcs(m_canvas->face, type)) {
    painter.drawPath(sector(arc, false));
  }
  for (const dial::Line& tick : dial::scaleTicks(m_canvas->face, type)) {
    painter.drawLine(m_canvas->at(tick));
  }
}

void DialFace::drawHub(QPainter& painter) const {
  painter.setPen(pen(m_canvas->style.Scale_Color, dial::kHubPen));
  painter.setBrush(Qt::NoBrush);
  circle(painter, dial::centre(dial::Face::Round), dial::kHubRadius);
}

QRect DialFace::print(DialReadouts& readouts, Printing printing) {
  QPainter painter(&m_picture);
  painter.setRenderHint(QPainter::Antialiasing);
  return (readouts.*printing)(painter, *m_canvas);
}

void DialFace::wipe(const Stroke& needle, DialReadouts& readouts) {
  wipeStroke(pixelArea(m_picture, m_picture.rect()), needle,
             toQColor(m_canvas->style.Dial_Color).rgb());
  m_marred = true;
  QPainter painter(&m_picture);
  painter.setRenderHint(QPainter::Antialiasing);
  readouts.printMode(painter, *m_canvas);
}

bool DialFace::wipeNeedleArea(DialReadouts& readouts) {
  if (!m_marred) return false;
  QPainter painter(&m_picture);
  painter.setRenderHint(QPainter::Antialiasing);
  setFill(painter, m_canvas->style.Dial_Color, 1);
  switch (dial::faceOf(m_canvas->style.DialType)) {
    case dial::Face::Round:
      circle(painter, dial::centre(dial::Face::Round), dial::kWipedDisc);
      drawHub(painter);
      break;
    case dial::Face::Arc:
      painter.drawPath(sector(dial::wipedSector(), true));
      setFill(painter, m_canvas->style.Panel_Color, 1);
      painter.drawPath(sector(dial::wipedCutOut(), true));
      readouts.printMode(painter, *m_canvas);
      break;
    case dial::Face::None:
      break;
  }
  return true;
}

QPen DialFace::pen(Colour colour, double logicalWidth) const {
  return QPen(toQColor(colour), m_canvas->pen(logicalWidth), Qt::SolidLine, Qt::FlatCap,
              Qt::MiterJoin);
}

void DialFace::setFill(QPainter& painter, Colour colour, double outline) const {
  painter.setPen(pen(colour, outline));
  painter.setBrush(toQColor(colour));
}

QPainterPath DialFace::sector(const dial::Arc& arc, bool closed) const {
  const QPointF middle = m_canvas->at(dial::centre(dial::faceOf(m_canvas->style.DialType)));
  const double radius = m_canvas->map.length(arc.radius);
  const QRectF box(middle - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
  QPainterPath path;
  if (closed) {
    path.moveTo(middle);
  } else {
    path.arcMoveTo(box, degrees(arc.from));
  }
  path.arcTo(box, degrees(arc.from), degrees(arc.to - arc.from));
  if (closed) path.closeSubpath();
  return path;
}

void DialFace::circle(QPainter& painter, dial::Point centre, double radius) const {
  const double pixels = m_canvas->map.length(radius);
  painter.drawEllipse(m_canvas->at(centre), pixels, pixels);
}

}  // namespace qv3
