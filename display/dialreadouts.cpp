#include "display/dialreadouts.h"

#include <QFontMetricsF>

#include "display/displaystyle.h"

namespace qv3 {

namespace {

/// Glyphs may reach a little beyond their advance and line box.
constexpr int kInkMargin = 2;

QFont fontFor(const QString& text, const dial::Place& place, const DialCanvas& canvas) {
  const double size = canvas.map.length(place.size);
  const double room = canvas.map.length(place.room);
  QFont font = readoutFont(size);
  const double wide = QFontMetricsF(font).horizontalAdvance(text);
  if (wide > room) font.setPixelSize(qMax(1, static_cast<int>(font.pixelSize() * room / wide)));
  return font;
}

/// Prints a text at its place and returns its box; an empty text has none.
QRect print(QPainter& painter, const DialCanvas& canvas, const QString& text,
            const dial::Place& place) {
  if (text.isEmpty()) return {};
  const QFont font = fontFor(text, place, canvas);
  const QFontMetricsF metrics(font);
  const double wide = metrics.horizontalAdvance(text);
  const QPointF top = canvas.at(place.at) - QPointF(place.centred ? wide / 2 : 0, 0);
  painter.setFont(font);
  painter.drawText(top + QPointF(0, metrics.ascent()), text);
  return QRectF(top, QSizeF(wide, metrics.height()))
      .toAlignedRect()
      .adjusted(-kInkMargin, -kInkMargin, kInkMargin, kInkMargin);
}

void strokeLine(QPainter& painter, const DialCanvas& canvas, const dial::Line& line, double units,
                Qt::PenCapStyle cap) {
  QPen pen = painter.pen();
  pen.setWidthF(canvas.map.length(units));
  pen.setCapStyle(cap);
  painter.setPen(pen);
  painter.drawLine(canvas.at(line));
}

}  // namespace

void DialReadouts::printOn(QPainter& painter, const DialCanvas& canvas) {
  m_baseBox = {};
  m_clockBox = {};
  m_modeBoxes = {};
  printBase(painter, canvas);
  printMode(painter, canvas);
  printClock(painter, canvas);
}

QRect DialReadouts::blank(QPainter& painter, const QRect& box, Colour colour) {
  if (!box.isEmpty()) painter.fillRect(box, toQColor(colour));
  return box;
}

QRect DialReadouts::blankClock(QPainter& painter, Colour colour) const {
  if (!m_clockIsRound) return blank(painter, m_clockBox, colour);
  painter.setPen(Qt::NoPen);
  painter.setBrush(toQColor(colour));
  painter.drawEllipse(m_clockBox);
  return m_clockBox;
}

QRect DialReadouts::printBase(QPainter& painter, const DialCanvas& canvas) {
  dial::Place place = dial::basePlace(canvas.style.ClockLeft);
  const QFontMetricsF metrics(readoutFont(canvas.map.length(place.size)));
  const double sample = metrics.horizontalAdvance(QStringLiteral("0.00"));
  place.at.x -= canvas.map.units(sample) / 2;
  place.centred = false;
  place.room = dial::kRight - place.at.x;

  const QRect before = blank(painter, m_baseBox, canvas.style.Panel_Color);
  painter.setPen(toQColor(canvas.style.Text_Color));
  m_baseBox = print(painter, canvas, base, place);
  return before | m_baseBox;
}

QRect DialReadouts::printMode(QPainter& painter, const DialCanvas& canvas) {
  const bool onFace = canvas.face == dial::Face::Arc;
  const Colour ground = onFace ? canvas.style.Dial_Color : canvas.style.Panel_Color;
  QRect touched;
  for (const QRect& box : m_modeBoxes) touched |= blank(painter, box, ground);
  const dial::Face face = dial::faceOf(canvas.style.DialType);
  painter.setPen(toQColor(mode.colour));
  m_modeBoxes = {print(painter, canvas, mode.word, dial::modeWordPlace(face)),
                 print(painter, canvas, mode.status, dial::statusPlace(face)),
                 print(painter, canvas, mode.audioOff ? QStringLiteral("Audio OFF") : QString(),
                       dial::audioOffPlace(face))};
  for (const QRect& box : m_modeBoxes) touched |= box;
  return touched;
}

QRect DialReadouts::printClock(QPainter& painter, const DialCanvas& canvas) {
  const QRect before = blankClock(painter, canvas.style.Panel_Color);
  m_clockIsRound = clock.kind == ClockKind::Analogue;
  switch (clock.kind) {
    case ClockKind::None:
      m_clockBox = {};
      break;
    case ClockKind::Analogue:
      m_clockBox = printAnalogue(painter, canvas);
      break;
    case ClockKind::TwelveHour:
    case ClockKind::TwentyFourHour:
      m_clockBox = printDigital(painter, canvas);
      break;
  }
  return before | m_clockBox;
}

QRect DialReadouts::printAnalogue(QPainter& painter, const DialCanvas& canvas) const {
  const dial::ClockFace face = dial::clockFace(canvas.style.ClockLeft);
  painter.setPen(toQColor(canvas.style.Text_Color));
  const auto marks = dial::hourMarks(face);
  for (std::size_t hour = 0; hour < marks.size(); ++hour) {
    strokeLine(painter, canvas, marks[hour], hour % 3 == 0 ? 7 : 4, Qt::FlatCap);
  }
  strokeLine(painter, canvas, dial::hourHand(face, clock.hour, clock.minute), 11, Qt::RoundCap);
  strokeLine(painter, canvas, dial::minuteHand(face, clock.minute), 7, Qt::RoundCap);
  const double radius = canvas.map.length(face.radius);
  return QRectF(canvas.at(face.centre) - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius))
      .toAlignedRect();
}

QRect DialReadouts::printDigital(QPainter& painter, const DialCanvas& canvas) const {
  const bool left = canvas.style.ClockLeft;
  painter.setPen(toQColor(canvas.style.Text_Color));
  return print(painter, canvas, timeText(), dial::timePlace(left)) |
         print(painter, canvas, clock.date, dial::datePlace(left));
}

QString DialReadouts::timeText() const {
  const QString minute = QStringLiteral("%1").arg(clock.minute, 2, 10, QLatin1Char('0'));
  if (clock.kind == ClockKind::TwentyFourHour) {
    return QStringLiteral("%1:%2").arg(clock.hour, 2, 10, QLatin1Char('0')).arg(minute);
  }
  const int hour = clock.hour % 12 == 0 ? 12 : clock.hour % 12;
  return QStringLiteral("%1:%2 %3").arg(hour).arg(minute, clock.hour < 12 ? "AM" : "PM");
}

}  // namespace qv3
