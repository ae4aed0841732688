#include "recording/dialog/readouts.h"

#include <QKeyEvent>
#include <QPainter>

namespace qv3 {
namespace {

constexpr double kFillShare = 0.95;  ///< of the label's height is the line
constexpr double kSmallest = 0.6;    ///< of the font's size; what needs less ends in dots

void drawElided(QPainter& painter, const QRect& area, int alignment, const QString& text,
                Qt::TextElideMode mode) {
  const QString shown = painter.fontMetrics().elidedText(text, mode, area.width());
  painter.drawText(area, alignment | Qt::TextSingleLine, shown);
}

}  // namespace

ElidedLabel::ElidedLabel(const char* name, QWidget* parent, Qt::TextElideMode mode)
    : QLabel(parent), m_mode(mode) {
  setObjectName(QLatin1String(name));
  setTextFormat(Qt::PlainText);
}

void ElidedLabel::setFill(const QString& longest) {
  m_longest = longest;
  update();
}

void ElidedLabel::setValue(const QString& value) {
  if (value == text()) return;
  setText(value);
  setAccessibleDescription(value);
}

QSize ElidedLabel::minimumSizeHint() const {
  const QFontMetrics metrics = fontMetrics();
  const int around = 2 * (margin() + frameWidth());
  return {metrics.averageCharWidth() * 4 + around, metrics.height() + around};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  drawFrame(&painter);
  painter.setFont(fittingFont());
  painter.setPen(palette().color(foregroundRole()));
  drawElided(painter, textArea(), static_cast<int>(alignment()), text(), m_mode);
}

QRect ElidedLabel::textArea() const {
  const int around = margin();
  return contentsRect().adjusted(around, around, -around, -around);
}

QFont ElidedLabel::fittingFont() const {
  QFont fitting = font();
  const QFontMetricsF metrics(fitting);
  const double widest =
      qMax(metrics.horizontalAdvance(text()), metrics.horizontalAdvance(m_longest));
  const double high = textArea().height() / metrics.height();
  const double wanted = m_longest.isEmpty() ? qMin(1.0, high) : high * kFillShare;
  const double scale = qMin(wanted, qMax(kSmallest, textArea().width() / qMax(1.0, widest)));
  if (scale == 1) return fitting;
  fitting.setPixelSize(qMax(1, static_cast<int>(QFontInfo(fitting).pixelSize() * scale)));
  return fitting;
}

LoadedFileLabel::LoadedFileLabel(QWidget* parent) : QAbstractButton(parent) {
  setObjectName(QStringLiteral("lblLoadedFile"));
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
}

/// The base class makes a key of the letter behind an "&", and nothing of the "&" itself.
void LoadedFileLabel::setName(const QString& name) {
  setText(name);
  setShortcut({});
  setAccessibleName(name);
}

QSize LoadedFileLabel::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()), fontMetrics().height()};
}

/// A line under the name, as a link has it, tells that a press does something.
void LoadedFileLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QFont drawn = font();
  const bool underlined = isEnabled() && (underMouse() || hasFocus());
  drawn.setUnderline(underlined);
  painter.setFont(drawn);
  painter.setPen(palette().color(QPalette::Active,
                                 underlined && hasFocus() ? QPalette::Link : QPalette::Text));
  drawElided(painter, rect(), Qt::AlignLeft | Qt::AlignVCenter, text(), Qt::ElideMiddle);
}

void LoadedFileLabel::keyPressEvent(QKeyEvent* event) {
  const bool pressed = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  event->setAccepted(pressed);
  if (pressed && !event->isAutoRepeat()) click();
}

}  // namespace qv3
