#include "display/graphpanel.h"

#include <QImage>
#include <QPainter>
#include <QtMath>

#include "display/displaystyle.h"

namespace qv3 {

namespace {

constexpr int kColumnsPerSecond = 25;

std::uint32_t opaque(Colour colour) {
  return toQColor(colour).rgb();
}

}  // namespace

GraphPanel::GraphPanel(GraphTrace& trace, QWidget* parent) : ValueWidget(parent), m_trace(trace) {
  setObjectName(QStringLiteral("picGraph"));
  setAccessibleName(tr("Strip chart"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setStyle({});
}

void GraphPanel::setStyle(const GraphStyle& style) {
  m_picture.setLook({opaque(style.GraphSheet_Color), opaque(style.GraphPen_Color),
                     opaque(style.GraphGrid_Color), style.penWidth, style.GridX, style.GridY});
  m_behind = true;
  update();
}

void GraphPanel::showTrace() {
  if (!isVisible() || !isPictureFitting()) {
    m_behind = true;
    update();
  } else {
    const PenLine::Rows rows = m_picture.draw(m_trace);
    // Rounding at a ratio that is no whole number may take in a row more on either side.
    const int top = qFloor(rows.first / m_ratio) - 1;
    const int bottom = qCeil(rows.last / m_ratio) + 1;
    if (rows.first < rows.last) update(0, top, width(), bottom - top);
  }
  tellAccessibleValue();
}

QString GraphPanel::accessibleValue() const {
  int used = 0;
  for (const auto& column : m_trace.state().GraphPoints) used += column.used ? 1 : 0;
  if (used == 0) return tr("No trace");
  return tr("Needle over the last %n second(s)", nullptr, used / kColumnsPerSecond);
}

void GraphPanel::paintEvent(QPaintEvent*) {
  if (!isPictureFitting()) fitPicture();
  if (m_behind) m_picture.draw(m_trace);
  m_behind = false;
  const auto* bytes = reinterpret_cast<const uchar*>(m_picture.pixels());
  const QImage image(bytes, m_picture.width(), m_picture.height(), m_picture.width() * 4,
                     QImage::Format_RGB32);
  QPainter painter(this);
  // Pixel on pixel at any ratio.
  painter.scale(1 / m_ratio, 1 / m_ratio);
  painter.drawImage(QPoint(), image);
}

void GraphPanel::resizeEvent(QResizeEvent*) {
  m_trace.resizeSurface(width());
}

bool GraphPanel::isPictureFitting() const {
  return m_ratio == devicePixelRatioF() && m_picture.width() == qCeil(width() * m_ratio) &&
         m_picture.height() == qCeil(height() * m_ratio);
}

void GraphPanel::fitPicture() {
  m_ratio = devicePixelRatioF();
  m_picture.resize(qCeil(width() * m_ratio), qCeil(height() * m_ratio), m_ratio);
  m_behind = true;
}

}  // namespace qv3
