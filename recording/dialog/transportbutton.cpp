#include "recording/dialog/transportbutton.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include "recording/dialog/transportlook.h"
#include "recording/dialog/transportsymbols.h"

namespace qv3 {
namespace {

constexpr double kRadius = 3;
constexpr double kSymbolShare = 0.62;  ///< of the room above the caption

QString toText(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

bool presses(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

TransportButton::TransportButton(const char* name, QWidget* parent) : QAbstractButton(parent) {
  setObjectName(QLatin1String(name));
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
}

void TransportButton::setState(const ButtonState& state) {
  setEnabled(state.enabled);
  if (const QString caption = toText(state.caption); caption != text()) setText(caption);
  if (const QString tip = toText(state.toolTip); tip != toolTip()) setToolTip(tip);
  if (state.symbol == m_symbol && state.lit == m_lit) return;
  m_symbol = state.symbol;
  m_lit = state.lit;
  update();
}

void TransportButton::setCaptionShown(bool shown) {
  if (shown == m_captionShown) return;
  m_captionShown = shown;
  update();
}

QSize TransportButton::sizeHint() const {
  const QFontMetrics metrics = fontMetrics();
  return {metrics.horizontalAdvance(text()) + metrics.height(), metrics.height() * 5 / 2};
}

void TransportButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  drawKey(painter);
  QRectF area = rect();
  if (isDown()) area.translate(0, 1);
  if (m_captionShown) {
    const double line = fontMetrics().height();
    const QRectF caption(0, area.bottom() - line - line / 6, width(), line);
    area.setBottom(caption.top() + line / 6);
    painter.setPen(palette().color(QPalette::ButtonText));
    painter.drawText(caption, Qt::AlignCenter | Qt::TextSingleLine, text());
  }
  drawSymbol(painter, area);
}

void TransportButton::drawKey(QPainter& painter) const {
  const TransportLook look(palette());
  QColor top = look.keyTop;
  QColor bottom = look.keyBottom;
  if (isDown()) std::swap(top, bottom);
  if (underMouse() && isEnabled() && !isDown()) top = blend(top, look.highlight, 0.6);
  QLinearGradient fill(0, 0, 0, height());
  fill.setColorAt(0, top);
  fill.setColorAt(1, bottom);
  const QColor edge = hasFocus() ? palette().color(QPalette::Highlight) : look.edge;
  drawEdgedBox(painter, rect(), kRadius, edge, fill);
  if (!hasFocus()) return;
  const double line = hairline(painter);
  drawEdgedBox(painter, QRectF(rect()).adjusted(line, line, -line, -line), kRadius - line, edge,
               fill);
}

void TransportButton::drawSymbol(QPainter& painter, const QRectF& area) const {
  const double size = std::floor(qMin(area.width(), area.height()) * kSymbolShare);
  painter.translate(std::round(area.center().x() - size / 2),
                    std::round(area.center().y() - size / 2));
  painter.scale(size / kSymbolUnits, size / kSymbolUnits);
  painter.fillPath(transportSymbol(m_symbol), symbolColour());
}

/// Only Record is coloured; what is going on keeps its colour though the key is off.
QColor TransportButton::symbolColour() const {
  const QColor off = palette().color(QPalette::Disabled, QPalette::ButtonText);
  if (m_symbol == TransportSymbol::Record) {
    if (m_lit) return kRecordingRed;
    return isEnabled() ? TransportLook(palette()).record : off;
  }
  if (m_lit && isEnabled()) return palette().color(QPalette::Highlight);
  return isEnabled() ? palette().color(QPalette::ButtonText) : off;
}

void TransportButton::keyPressEvent(QKeyEvent* event) {
  if (!presses(*event)) {
    event->ignore();
  } else if (!event->isAutoRepeat()) {
    click();
  }
}

void TransportButton::keyReleaseEvent(QKeyEvent* event) {
  event->setAccepted(presses(*event));
}

void TransportButton::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) emit alternateClicked();
  QAbstractButton::mousePressEvent(event);
}

void TransportButton::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard) emit alternateClicked();
}

}  // namespace qv3
