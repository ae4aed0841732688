#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "display/accessiblevalue.h"
#include "display/dialface.h"
#include "display/dialmarks.h"
#include "display/dialreadouts.h"
#include "display/dialstyle.h"

namespace qv3 {

/// The meter panel: face, scale, needle, alert lamp, base reading, mode line and clock.
///
/// It shows what it is told and computes nothing. The picture is that of marks drawn over each
/// other as the calls come, but the face is kept in device pixels, so that a moving mark is smooth,
/// leaves no ghost at any pixel ratio, and costs only the pixels along it. Text printed twice the
/// same costs nothing.
class DialPanel : public ValueWidget {
  Q_OBJECT

 public:
  explicit DialPanel(QWidget* parent = nullptr);

  /// The face afresh in this style. The needle is gone until its next move; texts, clock and a lit
  /// lamp are drawn again.
  void Draw_Panel(const DialStyle& style);

  /// Erases the needle and draws it at `value`, 1/65536 of a turn clockwise from straight up. Dial
  /// type 2 shows a second needle in the shadow colour while the value is large. A width of 0 or
  /// less draws and erases nothing.
  void moveNeedle(std::int32_t value, Colour needleColour, Colour shadowColour);

  /// Wipes the needle's whole area.
  void Remove_Needle();

  /// Wipes, and draws in the new width from the next move on.
  void setNeedleWidth(int width);

  /// A lamp in the dial colour is off. `meaning` says in words what a lit one warns of.
  void Update_LED(Colour colour, const QString& meaning = {});

  void Update_BaseDisplay(const QString& text);
  void Update_ModeDisplay(const ModeReadout& mode);
  void Update_Clock(const ClockReadout& clock);

  QString accessibleValue() const override;
  void press() override { emit pressed(); }
  QAccessible::Role accessibleRole() const override { return QAccessible::Graphic; }
  std::vector<SurfacePart> accessibleParts() const override;

 signals:
  /// A mouse button went down on the panel.
  void pressed();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  /// What is drawn of the needle.
  struct Needle {
    std::int32_t value = 0;
    Colour colour = 0;
    std::optional<Colour> shadow;

    bool operator==(const Needle&) const = default;
  };

  /// One straight part of it, in panel units.
  struct Arm {
    dial::Line line;
    Colour colour = 0;
  };

  Surface surface() const { return {size(), devicePixelRatioF()}; }
  PanelMap map() const { return {double(width()), double(height())}; }
  std::vector<Arm> arms(const Needle& needle) const;
  void wipeNeedle();
  void updateNeedle(const std::optional<Needle>& before);
  void reprint(DialFace::Printing printing);
  DialMarks marks() const;
  void updateLamp();
  QRect lampPlace() const;
  QRect onPanel(const QRect& pixels) const;
  QString needleWords() const;
  QString lampWords() const;
  QString modeWords() const;
  QString clockWords() const;

  DialStyle m_style;
  DialReadouts m_readouts;
  DialFace m_face;
  DialCompositor m_compositor;
  std::optional<Needle> m_needle;
  bool m_shadowShown = false;
  std::optional<Colour> m_lamp;
  QString m_lampMeaning;
};

}  // namespace qv3
