#include "display/dialpanel.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QRegion>

#include "display/displaystyle.h"

namespace qv3 {

namespace {

/// Logical pixels around a moving mark: for its soft edge, and for the rounding of regions at
/// pixel ratios that are no whole number.
constexpr int kMargin = 2;

/// Rows of one rectangle along the needle.
constexpr int kBand = 64;

QRegion regionOf(const std::vector<PixelRect>& cover) {
  std::vector<QRect> rects;
  rects.reserve(cover.size());
  for (const PixelRect& r : cover) rects.emplace_back(r.x, r.y, r.width, r.height);
  QRegion region;
  region.setRects(rects.data(), static_cast<int>(rects.size()));
  return region;
}

}  // namespace

DialPanel::DialPanel(QWidget* parent) : ValueWidget(parent) {
  setObjectName(QStringLiteral("picMeterPanel"));
  setAccessibleName(tr("Meter dial"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setPressable();
}

void DialPanel::Draw_Panel(const DialStyle& style) {
  if (m_lamp == m_style.Dial_Color) m_lamp.reset();
  m_style = style;
  m_needle.reset();
  m_face.forget();
  update();
  tellAccessibleValue();
}

void DialPanel::moveNeedle(std::int32_t value, Colour needleColour, Colour shadowColour) {
  if (m_style.Needle_Width <= 0 || dial::faceOf(m_style.DialType) == dial::Face::None) return;
  Needle next{value, needleColour, {}};
  if (m_style.DialType == 2) {
    m_shadowShown = dial::shadowShown(m_shadowShown, value);
    if (m_shadowShown) next.shadow = shadowColour;
  }
  if (m_needle == next) return;
  wipeNeedle();
  const std::optional<Needle> before = m_needle;
  m_needle = next;
  updateNeedle(before);
  tellAccessibleValue();
}

void DialPanel::Remove_Needle() {
  if (m_face.isDrawnFor(surface()) && m_face.wipeNeedleArea(m_readouts)) update();
  const std::optional<Needle> before = m_needle;
  m_needle.reset();
  updateNeedle(before);
  tellAccessibleValue();
}

void DialPanel::setNeedleWidth(int width) {
  Remove_Needle();
  m_style.Needle_Width = width;
}

void DialPanel::Update_LED(Colour colour, const QString& meaning) {
  // Without a face a lamp that goes out leaves a dot in the dial colour.
  const bool faceShown = dial::drawnFace(m_style.DialType, m_style.ScaleType) != dial::Face::None;
  std::optional<Colour> lamp;
  if (colour != m_style.Dial_Color || !faceShown) lamp = colour;
  m_lampMeaning = meaning;
  if (m_lamp == lamp) return;
  m_lamp = lamp;
  updateLamp();
  tellAccessibleValue();
}

void DialPanel::Update_BaseDisplay(const QString& text) {
  if (m_readouts.base == text) return;
  m_readouts.base = text;
  reprint(&DialReadouts::printBase);
}

void DialPanel::Update_ModeDisplay(const ModeReadout& mode) {
  if (m_readouts.mode == mode) return;
  m_readouts.mode = mode;
  reprint(&DialReadouts::printMode);
}

void DialPanel::Update_Clock(const ClockReadout& clock) {
  if (m_readouts.clock == clock) return;
  m_readouts.clock = clock;
  reprint(&DialReadouts::printClock);
}

void DialPanel::reprint(DialFace::Printing printing) {
  if (m_face.isDrawnFor(surface())) {
    update(onPanel(m_face.print(m_readouts, printing)).adjusted(-1, -1, 1, 1));
  }
  tellAccessibleValue();
}

QRect DialPanel::onPanel(const QRect& pixels) const {
  const qreal ratio = devicePixelRatioF();
  return QRectF(QPointF(pixels.topLeft()) / ratio, QSizeF(pixels.size()) / ratio).toAlignedRect();
}

std::vector<DialPanel::Arm> DialPanel::arms(const Needle& needle) const {
  std::vector<Arm> parts{{dial::needle(m_style.DialType, needle.value), needle.colour}};
  if (m_style.DialType == 3) {
    parts.push_back({dial::oppositeArm(m_style.DialType, needle.value), needle.colour});
  }
  if (needle.shadow) {
    const std::int32_t value = dial::shadowValue(needle.value);
    parts.push_back({dial::needle(m_style.DialType, value), *needle.shadow});
  }
  return parts;
}

/// In the kept picture. Mostly there is nothing to do: bare dial stays bare dial, and the mode line
/// would be printed again as it stands.
void DialPanel::wipeNeedle() {
  if (!m_needle || !m_face.isDrawnFor(surface())) return;
  const DialCanvas& canvas = m_face.canvas();
  const double width = canvas.pen(m_style.Needle_Width);
  const double reach = canvas.map.units(width / 2 + canvas.pen(1));
  for (const Arm& arm : arms(*m_needle)) {
    if (dial::onBareDial(canvas.face, arm.line, reach)) continue;
    m_face.wipe({canvas.map.line(arm.line), width}, m_readouts);
  }
}

void DialPanel::updateNeedle(const std::optional<Needle>& before) {
  const PanelMap panel = map();
  std::vector<Stroke> strokes;
  const auto add = [&](const std::optional<Needle>& needle) {
    if (!needle) return;
    for (const Arm& arm : arms(*needle)) {
      strokes.push_back({panel.line(arm.line), double(m_style.Needle_Width)});
    }
  };
  add(before);
  add(m_needle);
  if (!strokes.empty()) update(regionOf(coverOf(strokes, kMargin, kBand)));
}

void DialPanel::updateLamp() {
  update(lampPlace().adjusted(-kMargin, -kMargin, kMargin, kMargin));
}

QRect DialPanel::lampPlace() const {
  const PanelMap panel = map();
  const dial::Lamp lamp = dial::lamp(m_style.DialType, panel.width());
  const dial::Point at = panel.at(lamp.at);
  const double radius = lamp.diameter / 2;
  return QRectF(at.x - radius, at.y - radius, lamp.diameter, lamp.diameter).toAlignedRect();
}

void DialPanel::paintEvent(QPaintEvent* event) {
  if (!m_face.isDrawnFor(surface())) m_face.draw(surface(), m_style, m_readouts);
  const DialMarks moving = marks();
  QPainter painter(this);
  for (const QRect& rect : event->region()) {
    m_compositor.paint(painter, rect, m_face.picture(), m_face.canvas().ratio, moving);
  }
  paintFocusRing(painter, toQColor(m_style.Panel_Color));
}

DialMarks DialPanel::marks() const {
  const DialCanvas& canvas = m_face.canvas();
  DialMarks marks;
  if (m_needle) {
    const double width = canvas.pen(m_style.Needle_Width);
    for (const Arm& arm : arms(*m_needle)) {
      marks.arms.push_back({{canvas.map.line(arm.line), width}, toQColor(arm.colour).rgb()});
    }
  }
  if (m_lamp) {
    const dial::Lamp lamp = dial::lamp(m_style.DialType, map().width());
    const Dot dot{canvas.map.at(lamp.at), canvas.pen(lamp.diameter)};
    marks.lamps.push_back({dot, toQColor(*m_lamp).rgb()});
  }
  return marks;
}

void DialPanel::mousePressEvent(QMouseEvent* event) {
  event->accept();
  emit pressed();
}

}  // namespace qv3
