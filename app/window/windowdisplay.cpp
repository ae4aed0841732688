#include "app/window/windowdisplay.h"

#include <QLocale>
#include <utility>

#include "display/geometry/tints.h"
#include "instrument/metercore.h"
#include "measure/sensitivity.h"
#include "settings/derived.h"

namespace qv3 {
namespace {

constexpr int kShortDate = 1;
constexpr int kLongDate = 2;

ClockKind clockKind(std::int32_t clockType) {
  switch (clockType) {
    case 1:
      return ClockKind::Analogue;
    case 2:
      return ClockKind::TwelveHour;
    case 3:
      return ClockKind::TwentyFourHour;
    default:
      return ClockKind::None;
  }
}

/// In words, as the menus call it.
QString lampMeaning(Lamp lamp) {
  switch (lamp) {
    case Lamp::Set:
      return QStringLiteral("SET");
    case Lamp::BodyMotion:
      return QStringLiteral("Body Motion");
    case Lamp::Lag:
      return QStringLiteral("Needle Lag");
    default:
      return {};
  }
}

QDateTime dateTimeOf(const SessionClock& clock) {
  const QDate date = QDate(1999, 12, 31).addDays(clock.day);
  return {date, QTime(0, 0).addSecs(static_cast<int>(clock.secondsOfDay))};
}

QString dateText(QDate date, ClockKind kind, std::int32_t dateType) {
  if (kind != ClockKind::TwelveHour && kind != ClockKind::TwentyFourHour) return {};
  if (dateType == kShortDate) return QLocale().toString(date, QLocale::ShortFormat);
  if (dateType == kLongDate) return QLocale().toString(date, QLocale::LongFormat);
  return {};
}

}  // namespace

LayoutParts layoutParts(const ProgramSettings& settings, int recordingHeight) {
  LayoutParts parts;
  parts.recordingVisible = settings.RecordVisible;
  parts.recordingHeight = recordingHeight;
  parts.graphVisible = settings.GraphVisible;
  parts.graphHeightIndex = graphNumber(settings.GraphHeight_Index);
  return parts;
}

WindowDisplay::WindowDisplay(MainWindow& window, const ProgramSettings& settings,
                             std::function<QDateTime()> localTime,
                             std::function<void()> refreshMenus)
    : m_window(window),
      m_settings(settings),
      m_localTime(std::move(localTime)),
      m_refreshMenus(std::move(refreshMenus)) {}

void WindowDisplay::Draw_Panel() {
  DialStyle style;
  style.DialType = m_settings.DialType;
  style.ScaleType = m_settings.ScaleType;
  style.Panel_Color = m_settings.Panel_Color;
  style.Dial_Color = m_settings.Dial_Color;
  style.Scale_Color = m_settings.Scale_Color;
  style.Text_Color = m_settings.Text_Color;
  style.Needle_Width = m_settings.Needle_Width;
  style.ClockLeft = m_settings.ClockLeft;
  m_window.dial().Draw_Panel(style);
  m_window.bd().setColours(m_settings.Panel_Color, m_settings.Text_Color,
                           PanelTextTint(m_settings.Panel_Color, m_settings.Text_Color));
}

void WindowDisplay::moveNeedle(const NeedleMove& move) {
  m_window.dial().moveNeedle(move.position, move.colour,
                             ShadowNeedleColor(m_settings.Dial_Color, m_settings.MainNeedle_Color,
                                               m_settings.ShadowNeedleColor_Index));
}

/// Also how a change of the needle's width reaches the panel.
void WindowDisplay::Remove_Needle() {
  m_window.dial().setNeedleWidth(m_settings.Needle_Width);
}

void WindowDisplay::Update_LED(Colour colour) {
  m_window.dial().Update_LED(colour, lampMeaning(lampOf(colour, m_settings)));
}

void WindowDisplay::Update_BaseDisplay(const std::string& text) {
  m_window.dial().Update_BaseDisplay(QString::fromStdString(text));
}

void WindowDisplay::Update_BdDisplay(const std::string& text, bool running) {
  m_window.bd().Update_BdDisplay(QString::fromStdString(text), running);
}

void WindowDisplay::Update_ModeDisplay(const ModeLine& line) {
  m_window.dial().Update_ModeDisplay({QString::fromStdString(line.word),
                                      QString::fromStdString(line.status), line.colour,
                                      line.audioOff});
}

void WindowDisplay::Update_SensKnob(int position) {
  m_window.knob().setColours(m_settings.Panel_Color, m_settings.Text_Color);
  const std::string_view label = sensitivityRow(position).label;
  m_window.knob().Update_SensKnob(clampKnob(position),
                                  QString::fromUtf8(label.data(), qsizetype(label.size())));
}

void WindowDisplay::setSessionClock(const std::optional<SessionClock>& clock) {
  m_sessionClock = clock;
  m_clockHidden = false;
  Update_Clock();
}

void WindowDisplay::hideClock() {
  m_clockHidden = true;
  Update_Clock();
}

void WindowDisplay::showTagCount(std::int32_t count) {
  m_window.transport().setTag(QString::number(count));
}

void WindowDisplay::showRecordTime(std::int32_t seconds) {
  m_window.transport().setPlayTime(seconds);
}

void WindowDisplay::Update_Clock() {
  const QDateTime now = m_sessionClock ? dateTimeOf(*m_sessionClock) : m_localTime();
  ClockReadout clock;
  clock.kind = m_clockHidden ? ClockKind::None : clockKind(m_settings.ClockType);
  clock.hour = now.time().hour();
  clock.minute = now.time().minute();
  clock.date = dateText(now.date(), clock.kind, m_settings.DateType);
  m_window.dial().Update_Clock(clock);
}

void WindowDisplay::Update_Graph(std::int32_t reading) {
  const int row = clampKnob(m_settings.KnobPosition);
  if (m_window.trace().Update_Graph(reading, row, sensitivityRow(row).gain,
                                    m_settings.GraphInvert)) {
    m_window.graph().showTrace();
  }
}

void WindowDisplay::rebuildGraph() {
  applyGraphStyle();
  m_window.trace().raiseRebuild();
}

void WindowDisplay::updateBackColours() {
  m_window.setBackColour(m_settings.Background_Color);
  applyGraphStyle();
}

void WindowDisplay::layoutWindow() {
  m_window.setParts(layoutParts(m_settings, m_window.transport().neededHeight()));
  m_window.layOut();
}

void WindowDisplay::refreshControls() {
  applyGraphStyle();
  m_refreshMenus();
}

void WindowDisplay::applyGraphStyle() {
  GraphStyle style;
  style.GraphSheet_Color = m_settings.GraphSheet_Color;
  style.GraphPen_Color = m_settings.GraphPen_Color;
  style.GraphGrid_Color = m_settings.GraphGrid_Color;
  style.penWidth = graphNumber(m_settings.GraphPenWidth_Index);
  style.GridX = m_settings.GridX;
  style.GridY = m_settings.GridY;
  m_window.graph().setStyle(style);
}

}  // namespace qv3
