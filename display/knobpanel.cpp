#include "display/knobpanel.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "display/displaystyle.h"
#include "measure/sensitivity.h"

namespace qv3 {

namespace {

constexpr double kPen = 2;          ///< logical pixels
constexpr double kHalo = 6;         ///< keeps the pointer's outline off the label
constexpr double kLabelShare = 26;  ///< the label's size is this part of the meter's width

double degrees(double radians) {
  return radians * 180 / dial::kPi;
}

/// As its label has it: the gain is of single precision.
double sensitivityAt(int index) {
  return std::round(sensitivityRow(index).gain * 10.0) / 10;
}

QPen knobPen(Colour colour) {
  return {toQColor(colour), kPen, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin};
}

}  // namespace

KnobPanel::KnobPanel(QWidget* parent) : ValueWidget(parent) {
  setObjectName(QStringLiteral("picKnob"));
  setAccessibleName(tr("Sensitivity"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::TabFocus);
}

void KnobPanel::setColours(Colour panel, Colour text) {
  if (panel == m_panel && text == m_text) return;
  m_panel = panel;
  m_text = text;
  m_still = {};
  update();
}

void KnobPanel::setMeterWidth(int width) {
  if (width == m_meterWidth) return;
  m_meterWidth = width;
  update();
}

void KnobPanel::Update_SensKnob(int index, const QString& label) {
  if (index == m_index && label == m_label) return;
  m_index = index;
  m_label = label;
  update();
  tellAccessibleValue();
}

void KnobPanel::paintEvent(QPaintEvent*) {
  const qreal ratio = devicePixelRatioF();
  if (m_still.size() != size() * ratio || m_still.devicePixelRatio() != ratio) drawStill();
  QPainter painter(this);
  painter.drawImage(QPoint(), m_still);
  painter.setRenderHint(QPainter::Antialiasing);
  drawPointer(painter);
  drawLabel(painter);
  paintFocusRing(painter, toQColor(m_panel));
}

void KnobPanel::drawStill() {
  const qreal ratio = devicePixelRatioF();
  m_still = QImage(size() * ratio, QImage::Format_RGB32);
  m_still.setDevicePixelRatio(ratio);
  m_still.fill(toQColor(m_panel));
  QPainter painter(&m_still);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(knobPen(m_text));
  const knob::Arc rim = knob::rim();
  painter.drawArc(box(rim.centre, rim.radius), qRound(degrees(rim.from) * 16),
                  qRound(degrees(rim.sweep) * 16));
  painter.drawEllipse(box({0, 0}, knob::kHubRadius));
  for (const knob::Line& tick : knob::ticks()) painter.drawLine(at(tick.from), at(tick.to));
}

void KnobPanel::drawPointer(QPainter& painter) const {
  const knob::Arc pointer = knob::pointer(m_index);
  const QPointF centre = at(pointer.centre);
  QPainterPath outline(centre);
  outline.arcTo(box(pointer.centre, pointer.radius), degrees(pointer.from), degrees(pointer.sweep));
  outline.closeSubpath();
  painter.setPen(knobPen(m_text));
  painter.setBrush(toQColor(m_panel));
  painter.drawPath(outline);
}

void KnobPanel::drawLabel(QPainter& painter) const {
  painter.setFont(readoutFont(m_meterWidth / kLabelShare));
  const QFontMetricsF metrics(painter.font());
  const QPointF top = at({0, knob::kLabelTop});
  const QPointF start = top + QPointF(-metrics.horizontalAdvance(m_label) / 2, metrics.ascent());
  QPainterPath glyphs;
  glyphs.addText(start, painter.font(), m_label);
  painter.strokePath(glyphs,
                     QPen(toQColor(m_panel), kHalo, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin));
  painter.setPen(toQColor(m_text));
  painter.drawText(start, m_label);
}

QPointF KnobPanel::at(knob::Point point) const {
  const knob::Point pixel = surface().toDevice(point);
  return {pixel.x, pixel.y};
}

QRectF KnobPanel::box(knob::Point centre, double radius) const {
  return {at({centre.x - radius, centre.y + radius}), at({centre.x + radius, centre.y - radius})};
}

void KnobPanel::mousePressEvent(QMouseEvent* event) {
  tellMouse(event->button(), event->position());
}

void KnobPanel::mouseMoveEvent(QMouseEvent* event) {
  tellMouse(event->buttons().toInt(), event->position());
}

void KnobPanel::tellMouse(int button, QPointF position) {
  const knob::Point at = surface().toKnob({position.x(), position.y()});
  emit mouseUsed(button, at.x, at.y);
}

void KnobPanel::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Left:
      turnTo(m_index - 1);
      break;
    case Qt::Key_Right:
      turnTo(m_index + 1);
      break;
    case Qt::Key_Home:
      turnTo(0);
      break;
    case Qt::Key_End:
      turnTo(knob::kLastIndex);
      break;
    default:
      event->ignore();
      break;
  }
}

/// By the mouse's way, so that what refuses the mouse refuses a key.
void KnobPanel::turnTo(int index) {
  const knob::Point at = knob::pointer(index).centre;
  emit mouseUsed(1, at.x, at.y);
}

std::optional<SurfaceNumber> KnobPanel::accessibleNumber() const {
  return SurfaceNumber{sensitivityAt(m_index), sensitivityAt(0), sensitivityAt(knob::kLastIndex)};
}

void KnobPanel::setAccessibleNumber(double sensitivity) {
  int nearest = 0;
  for (int index = 1; index <= knob::kLastIndex; ++index) {
    const double off = std::abs(sensitivityAt(index) - sensitivity);
    if (off < std::abs(sensitivityAt(nearest) - sensitivity)) nearest = index;
  }
  turnTo(nearest);
}

}  // namespace qv3
