#pragma once

#include <QImage>
#include <QString>

#include "display/accessiblevalue.h"
#include "display/geometry/knobgeometry.h"
#include "measure/colour.h"

namespace qv3 {

/// The sensitivity knob on its square panel: rim, hub and ticks are kept, pointer and label move.
/// With the focus Left and Right turn it by one position, Home and End all the way. Up and Down,
/// which turn it from label to label, are the window's.
class KnobPanel : public ValueWidget {
  Q_OBJECT

 public:
  explicit KnobPanel(QWidget* parent = nullptr);

  void setColours(Colour panel, Colour text);

  /// Width of the meter panel in logical pixels, from which the label takes its size.
  void setMeterWidth(int width);

  /// Index 0 is fully anticlockwise, 63 fully clockwise.
  void Update_SensKnob(int index, const QString& label);

  QString accessibleValue() const override { return m_label; }
  QAccessible::Role accessibleRole() const override { return QAccessible::Dial; }
  /// The sensitivity, not the position.
  std::optional<SurfaceNumber> accessibleNumber() const override;
  void setAccessibleNumber(double sensitivity) override;
  void stepAccessibleNumber(int steps) override { turnTo(m_index + steps); }

 signals:
  /// A button went down, or the mouse moved with buttons held: the button, or the mask of those
  /// held (1 left, 2 right, 4 middle), and the place in knob units. A key is a press of the left
  /// button where it turns the knob to.
  void mouseUsed(int button, double x, double y);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void tellMouse(int button, QPointF position);
  void turnTo(int index);
  void drawStill();
  void drawPointer(QPainter& painter) const;
  void drawLabel(QPainter& painter) const;
  QPointF at(knob::Point point) const;
  QRectF box(knob::Point centre, double radius) const;
  KnobSurface surface() const { return KnobSurface(qMin(width(), height())); }

  Colour m_panel = 10070316;
  Colour m_text = 0;
  int m_meterWidth = 0;
  int m_index = 0;
  QString m_label;
  QImage m_still;  ///< null when it has to be drawn again
};

}  // namespace qv3
