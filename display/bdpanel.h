#pragma once

#include <QString>

#include "display/accessiblevalue.h"
#include "measure/colour.h"

namespace qv3 {

/// The body-motion counter's read-out.
class BdPanel : public ValueWidget {
  Q_OBJECT

 public:
  explicit BdPanel(QWidget* parent = nullptr);

  /// `stopped` is the colour of the text while the counter does not run.
  void setColours(Colour panel, Colour text, Colour stopped);
  void Update_BdDisplay(const QString& text, bool running);

  QString accessibleValue() const override;
  void press() override;
  QAccessible::Role accessibleRole() const override { return QAccessible::Button; }

 signals:
  /// A mouse button went down; all are up again.
  void pressed();
  void released();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  QFont fittingFont() const;

  Colour m_panel = 10070316;
  Colour m_textColour = 0;
  Colour m_stoppedColour = 0;
  QString m_text;
  bool m_running = false;
};

}  // namespace qv3
