#pragma once

#include <QAbstractButton>

#include "recording/transportstate.h"

namespace qv3 {

/// A key of the transport panel: a symbol, and below it the caption where there is room. Return
/// presses the key that has the focus; Space and the letters are left to the window.
class TransportButton : public QAbstractButton {
  Q_OBJECT

 public:
  TransportButton(const char* name, QWidget* parent);

  void setState(const ButtonState& state);
  void setCaptionShown(bool shown);
  bool captionShown() const { return m_captionShown; }

  QSize sizeHint() const override;

 signals:
  /// The right mouse button went down, or the menu key was pressed.
  void alternateClicked();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void drawKey(QPainter& painter) const;
  void drawSymbol(QPainter& painter, const QRectF& area) const;
  QColor symbolColour() const;

  TransportSymbol m_symbol = TransportSymbol::Stop;
  bool m_lit = false;
  bool m_captionShown = true;
};

}  // namespace qv3
