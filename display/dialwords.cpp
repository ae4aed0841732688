// What the meter panel shows, in words.

#include <QStringList>

#include "display/dialpanel.h"

namespace qv3 {

QString DialPanel::accessibleValue() const {
  QStringList words{needleWords()};
  if (!m_readouts.base.isEmpty()) words << tr("base %1").arg(m_readouts.base);
  if (m_lamp) words << tr("lamp %1").arg(lampWords());
  if (const QString mode = modeWords(); !mode.isEmpty()) words << mode;
  return words.join(QStringLiteral(", "));
}

std::vector<SurfacePart> DialPanel::accessibleParts() const {
  QRect needle;
  if (m_needle) {
    const dial::Line line = map().line(arms(*m_needle).front().line);
    needle = QRectF(QPointF(line.from.x, line.from.y), QPointF(line.to.x, line.to.y))
                 .normalized()
                 .toAlignedRect();
  }
  return {{tr("Needle"), needleWords(), needle},
          {tr("Alert lamp"), lampWords(), lampPlace()},
          {tr("Base reading"), m_readouts.base, onPanel(m_readouts.basePixels())},
          {tr("Mode"), modeWords(), onPanel(m_readouts.modePixels())},
          {tr("Clock"), clockWords(), onPanel(m_readouts.clockPixels())}};
}

QString DialPanel::needleWords() const {
  if (!m_needle) return tr("No needle");
  const bool arc = dial::faceOf(m_style.DialType) == dial::Face::Arc;
  const int off =
      arc ? dial::percentFromSet(m_needle->value) : dial::degreesFromSet(m_needle->value);
  if (off == 0) return tr("Needle at SET");
  const QString amount = arc ? tr("%1 %").arg(qAbs(off)) : tr("%1 degrees").arg(qAbs(off));
  return off > 0 ? tr("Needle %1 right of SET").arg(amount)
                 : tr("Needle %1 left of SET").arg(amount);
}

QString DialPanel::lampWords() const {
  if (!m_lamp || *m_lamp == m_style.Dial_Color) return tr("off");
  return m_lampMeaning.isEmpty() ? tr("lit") : m_lampMeaning;
}

QString DialPanel::modeWords() const {
  QStringList words;
  for (const QString& text : {m_readouts.mode.word, m_readouts.mode.status}) {
    if (!text.isEmpty()) words << text;
  }
  if (m_readouts.mode.audioOff) words << tr("Audio OFF");
  return words.join(QStringLiteral(", "));
}

QString DialPanel::clockWords() const {
  if (m_readouts.clock.kind == ClockKind::None) return {};
  const QString& date = m_readouts.clock.date;
  const QString time = m_readouts.timeText();
  return date.isEmpty() ? time : time + QStringLiteral(", ") + date;
}

}  // namespace qv3
