#include "display/accessiblevalue.h"

#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QTimerEvent>
#include <utility>

namespace qv3 {

namespace {

constexpr int kTellPause = 1000;  ///< milliseconds: speech cannot follow faster
constexpr int kRing = 2;          ///< logical pixels
constexpr int kMiddleGray = 110;  ///< white and black show equally well on it

/// The focus did not move within the window: it, or a menu, came or went.
bool staysInWindow(const QFocusEvent& event) {
  return event.reason() == Qt::ActiveWindowFocusReason || event.reason() == Qt::PopupFocusReason ||
         event.reason() == Qt::MenuBarFocusReason;
}

}  // namespace

void ValueWidget::setPressable() {
  m_pressable = true;
  setFocusPolicy(Qt::TabFocus);
}

void ValueWidget::tellAccessibleValue() {
  if (!isHeard()) return;
  if (m_pause.isActive()) {
    m_untold = true;
  } else {
    tellNow();
  }
}

void ValueWidget::tellNow() {
  m_pause.start(kTellPause, this);
  const QString words = accessibleValue();
  if (words == m_told) return;
  m_told = words;
  QAccessibleValueChangeEvent value(this, words);
  QAccessible::updateAccessibility(&value);
  QAccessibleEvent description(this, QAccessible::DescriptionChanged);
  QAccessible::updateAccessibility(&description);
}

void ValueWidget::timerEvent(QTimerEvent* event) {
  if (event->timerId() != m_pause.timerId()) {
    QWidget::timerEvent(event);
  } else if (std::exchange(m_untold, false)) {
    tellNow();
  } else {
    m_pause.stop();
  }
}

void ValueWidget::keyPressEvent(QKeyEvent* event) {
  const bool presses = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  event->setAccepted(m_pressable && presses);
  if (m_pressable && presses && !event->isAutoRepeat()) press();
}

void ValueWidget::contextMenuEvent(QContextMenuEvent* event) {
  if (m_pressable && event->reason() == QContextMenuEvent::Keyboard) press();
}

void ValueWidget::focusInEvent(QFocusEvent* event) {
  if (!staysInWindow(*event)) m_ring = true;
  update();
}

void ValueWidget::focusOutEvent(QFocusEvent* event) {
  if (!staysInWindow(*event)) m_ring = false;
  update();
}

void ValueWidget::paintFocusRing(QPainter& painter, const QColor& ground) const {
  if (!m_ring || !hasFocus()) return;
  const QColor ink = qGray(ground.rgb()) < kMiddleGray ? Qt::white : Qt::black;
  painter.setRenderHint(QPainter::Antialiasing, false);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(ink, kRing, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  constexpr int kInset = kRing / 2;
  painter.drawRect(rect().adjusted(kInset, kInset, -kInset, -kInset));
}

}  // namespace qv3
