#include "display/bdpanel.h"

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>

#include "display/displaystyle.h"

namespace qv3 {

namespace {

constexpr double kLeft = 2;  ///< logical pixels, as all here
constexpr double kTop = 1.5;
constexpr double kHeightLess = 3;  ///< the font's size is so much below the panel's height

}  // namespace

BdPanel::BdPanel(QWidget* parent) : ValueWidget(parent) {
  setObjectName(QStringLiteral("picBD"));
  setAccessibleName(tr("Body motion counter"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setPressable();
}

void BdPanel::setColours(Colour panel, Colour text, Colour stopped) {
  m_panel = panel;
  m_textColour = text;
  m_stoppedColour = stopped;
  update();
}

void BdPanel::Update_BdDisplay(const QString& text, bool running) {
  if (text == m_text && running == m_running) return;
  m_text = text;
  m_running = running;
  update();
  tellAccessibleValue();
}

QString BdPanel::accessibleValue() const {
  return m_running ? tr("%1, running").arg(m_text) : tr("%1, stopped").arg(m_text);
}

void BdPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), toQColor(m_panel));
  painter.setFont(fittingFont());
  painter.setPen(toQColor(m_running ? m_textColour : m_stoppedColour));
  painter.drawText(QPointF(kLeft, kTop + QFontMetricsF(painter.font()).ascent()), m_text);
  paintFocusRing(painter, toQColor(m_panel));
}

/// As high as the panel allows, less where the text would leave it at the right.
QFont BdPanel::fittingFont() const {
  const double size = height() - kHeightLess;
  const QFont font = readoutFont(size);
  const double wide = QFontMetricsF(font).horizontalAdvance(m_text);
  const double room = width() - 2 * kLeft;
  return wide > room ? readoutFont(std::floor(size * room / wide)) : font;
}

void BdPanel::mousePressEvent(QMouseEvent* event) {
  event->accept();
  if (event->buttons() == event->button()) emit pressed();
}

void BdPanel::mouseReleaseEvent(QMouseEvent* event) {
  event->accept();
  if (event->buttons() == Qt::NoButton) emit released();
}

void BdPanel::press() {
  emit pressed();
  emit released();
}

}  // namespace qv3
