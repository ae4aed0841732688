#include "recording/dialog/filepositionbar.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "recording/dialog/transportlook.h"

namespace qv3 {
namespace {

constexpr double kBlockShade = 0.28;      ///< of the way from the bar's face to its text
constexpr double kRecordingShade = 0.55;  ///< of the way from red to black
constexpr double kPercent = 10;

std::optional<BarKey> barKeyFor(int key) {
  switch (key) {
    case Qt::Key_Left:
      return BarKey::Left;
    case Qt::Key_Right:
      return BarKey::Right;
    case Qt::Key_PageUp:
      return BarKey::PageLeft;
    case Qt::Key_PageDown:
      return BarKey::PageRight;
    case Qt::Key_Home:
      return BarKey::First;
    case Qt::Key_End:
      return BarKey::Last;
    default:
      return std::nullopt;
  }
}

QRect toRect(const BarBox& box) {
  return {box.left, box.top, box.right - box.left, box.bottom - box.top};
}

}  // namespace

FilePositionBar::FilePositionBar(QWidget* parent) : QAbstractSlider(parent) {
  setObjectName(QStringLiteral("picFilePosition"));
  setAccessibleName(tr("Position"));
  setOrientation(Qt::Horizontal);
  setRange(0, BarGeometry::kWidth);
  setSingleStep(10);
  setPageStep(100);
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  tellRange();
  // Only assistive technology changes the value otherwise.
  connect(this, &QAbstractSlider::valueChanged, this, [this](int x) {
    if (m_telling) return;
    if (m_use == BarUse::Seek) emit seekRequested(x);
    tellPlace();
  });
}

void FilePositionBar::setUse(BarUse use, bool wholeRange) {
  m_use = use;
  m_wholeRange = wholeRange;
  if (use != BarUse::Range) m_drag.cancel();
  setCursor(use == BarUse::None ? Qt::ArrowCursor : Qt::PointingHandCursor);
  refresh();
}

void FilePositionBar::clear() {
  setShown({});
}

void FilePositionBar::showRange(int fromX, int toX, int shortest) {
  setShown({BarFace::Range, {fromX, toX}, std::nullopt, shortest});
}

void FilePositionBar::showPlayback(int fromX, int toX, double place) {
  setShown({BarFace::Range, {fromX, toX}, place});
}

void FilePositionBar::showRecording() {
  setShown({BarFace::Recording, {}, std::nullopt});
}

void FilePositionBar::showWork(double share) {
  setShown({BarFace::Work, m_state.range, share * BarGeometry::kWidth});
}

BarState FilePositionBar::shown() const {
  const std::optional<BarRange> dragged = m_drag.preview();
  return dragged ? BarState{BarFace::Range, *dragged, std::nullopt} : m_state;
}

QSize FilePositionBar::sizeHint() const {
  return {BarGeometry::kWidth, 16};
}

void FilePositionBar::setShown(const BarState& state) {
  const bool told = state.face == m_state.face && state.range == m_state.range;
  m_state = state;
  if (!told) tellRange();
  tellPlace();
  refresh();
}

void FilePositionBar::tellPlace() {
  const QScopedValueRollback telling(m_telling, true);
  const int begin = m_state.face == BarFace::Range ? m_state.range.from : 0;
  setValue(qRound(m_state.place.value_or(begin)));
}

/// Only where pixels change is painted: progress is told with every record.
void FilePositionBar::refresh() {
  const BarPicture before = std::exchange(m_painted, geometryInPixels().picture(shown()));
  if (m_painted == before) return;
  if (m_painted.face != before.face || m_painted.block != before.block) {
    update();
  } else {
    const auto [low, high] = std::minmax({before.progress.right, m_painted.progress.right});
    const bool began = before.progress.empty() || m_painted.progress.empty();
    updateColumns(began ? 0 : low, high);
  }
}

void FilePositionBar::updateColumns(int from, int to) {
  const double ratio = devicePixelRatioF();
  const int left = static_cast<int>(std::floor(from / ratio)) - 1;
  const int right = static_cast<int>(std::ceil(to / ratio)) + 1;
  update(left, 0, right - left, height());
}

void FilePositionBar::tellRange() {
  const auto percent = [](int x) { return QString::number(x / kPercent, 'f', 1); };
  switch (m_state.face) {
    case BarFace::Clear:
      setAccessibleDescription(tr("Nothing loaded"));
      break;
    case BarFace::Range:
      setAccessibleDescription(
          tr("Plays %1 % to %2 %").arg(percent(m_state.range.from), percent(m_state.range.to)));
      break;
    case BarFace::Recording:
      setAccessibleDescription(tr("Recording"));
      break;
    case BarFace::Work:
      setAccessibleDescription(tr("Working"));
      break;
  }
}

BarGeometry FilePositionBar::geometryInPixels() const {
  const double ratio = devicePixelRatioF();
  return {qRound(width() * ratio), qRound(height() * ratio)};
}

int FilePositionBar::placeAt(const QPointF& position) const {
  return BarGeometry(width(), height()).placeAt(position.x());
}

void FilePositionBar::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const double ratio = devicePixelRatioF();
  painter.scale(1 / ratio, 1 / ratio);
  const BarPicture picture = geometryInPixels().picture(shown());
  const bool recording = picture.face == BarFace::Recording;
  const QColor face = recording ? kRecordingRed : palette().color(QPalette::Button);
  const QColor ink = palette().color(QPalette::ButtonText);
  const QColor block =
      recording ? blend(face, Qt::black, kRecordingShade) : blend(face, ink, kBlockShade);
  const QSize size(qRound(width() * ratio), qRound(height() * ratio));
  painter.fillRect(QRect(QPoint(), size), face);
  painter.fillRect(toRect(picture.block), block);
  painter.fillRect(toRect(picture.progress), palette().color(QPalette::Highlight));
  if (!hasFocus()) return;
  const int line = qMax(1, qRound(2 * ratio));
  painter.setPen(QPen(palette().color(QPalette::Highlight), line, Qt::SolidLine, Qt::SquareCap,
                      Qt::MiterJoin));
  painter.drawRect(
      QRectF(QPointF(), size).adjusted(line / 2.0, line / 2.0, -line / 2.0, -line / 2.0));
}

void FilePositionBar::resizeEvent(QResizeEvent*) {
  m_painted = geometryInPixels().picture(shown());
  update();
}

void FilePositionBar::mousePressEvent(QMouseEvent* event) {
  event->accept();
  if (event->button() == Qt::RightButton && !m_drag.active()) {
    askWholeRange();
  } else if (event->button() == Qt::LeftButton && m_use == BarUse::Seek) {
    emit seekRequested(placeAt(event->position()));
  } else if (event->button() == Qt::LeftButton && m_use == BarUse::Range) {
    m_drag.press(placeAt(event->position()));
  }
}

void FilePositionBar::mouseMoveEvent(QMouseEvent* event) {
  event->accept();
  if (m_drag.move(placeAt(event->position()))) refresh();
}

void FilePositionBar::mouseReleaseEvent(QMouseEvent* event) {
  event->accept();
  if (event->button() != Qt::LeftButton) return;
  m_drag.move(placeAt(event->position()));
  const std::optional<BarRange> dragged = m_drag.release();
  refresh();
  if (dragged) emit rangeRequested(dragged->from, dragged->to);
}

/// Up and Down are left to the window.
void FilePositionBar::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && m_drag.active()) {
    m_drag.cancel();
    refresh();
    return;
  }
  const std::optional<BarKey> key = barKeyFor(event->key());
  event->setAccepted(key.has_value());
  if (!key) return;
  const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
  if (const auto request = barKey(*key, shift, m_use, m_state)) ask(*request);
}

void FilePositionBar::keyReleaseEvent(QKeyEvent* event) {
  event->ignore();
}

void FilePositionBar::ask(const BarRequest& request) {
  if (request.use == BarUse::Seek) {
    emit seekRequested(request.range.from);
  } else {
    emit rangeRequested(request.range.from, request.range.to);
  }
}

void FilePositionBar::askWholeRange() {
  if (m_wholeRange) emit wholeRangeRequested();
}

void FilePositionBar::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

void FilePositionBar::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard) askWholeRange();
}

void FilePositionBar::focusInEvent(QFocusEvent*) {
  update();
}

void FilePositionBar::focusOutEvent(QFocusEvent*) {
  update();
}

/// The base class would paint with every value.
void FilePositionBar::sliderChange(SliderChange) {}

}  // namespace qv3
