#pragma once

#include <QAccessible>
#include <QBasicTimer>
#include <QColor>
#include <QPainter>
#include <QRect>
#include <QString>
#include <QWidget>
#include <optional>
#include <vector>

namespace qv3 {

/// A part of a painted surface that tells something by itself, such as the clock on a dial.
struct SurfacePart {
  QString name;
  QString words;  ///< what it shows; empty while that is nothing
  QRect place;    ///< on the surface
};

/// What a surface shows, where that is a number.
struct SurfaceNumber {
  double value = 0;
  double least = 0;
  double most = 0;
};

/// A widget whose picture stands for a value: what a sighted user reads off it, assistive
/// technology reads from `accessibleValue()`. A read-out derives from this, sets its
/// `accessibleName` and calls `tellAccessibleValue()` whenever the value may have changed.
///
/// What a press of the mouse does to the surface, Return, the menu key and assistive technology do
/// too, once `setPressable` has put it among those that the Tab key visits. It then paints a ring
/// while it has the focus.
class ValueWidget : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  /// The value in words, such as "2.35" or "Needle at SET".
  virtual QString accessibleValue() const = 0;

  /// Of those that the accessibility bus of the Linux desktops knows.
  virtual QAccessible::Role accessibleRole() const { return QAccessible::StaticText; }

  /// Always as many, in the same order.
  virtual std::vector<SurfacePart> accessibleParts() const { return {}; }

  virtual std::optional<SurfaceNumber> accessibleNumber() const { return std::nullopt; }

  /// As if the user had turned or moved the surface there, or by so many of its steps.
  virtual void setAccessibleNumber(double) {}
  virtual void stepAccessibleNumber(int /*steps*/) {}

  bool pressable() const { return m_pressable; }

  /// As the mouse would press it, and release it at once.
  virtual void press() {}

 protected:
  /// Tells listeners if the words differ from those told last. Composes no text while nobody
  /// listens, and then once a second at most, so it may be called at the rate of the readings.
  void tellAccessibleValue();

  /// Whether anybody listens.
  virtual bool isHeard() const { return QAccessible::isActive(); }

  void setPressable();

  /// Around the surface, in black or white, whichever shows on `ground`. Nothing without the focus,
  /// nor for one that the window had when it came up.
  void paintFocusRing(QPainter& painter, const QColor& ground) const;

  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void timerEvent(QTimerEvent* event) override;

 private:
  void tellNow();

  QString m_told;
  QBasicTimer m_pause;  ///< runs while the last telling is fresh
  bool m_untold = false;
  bool m_pressable = false;
  bool m_ring = false;
};

/// Makes every `ValueWidget` speak its value, and a line say that it is nothing but that. Called
/// once, after the application object exists and before its first window.
void installAccessibleValues();

}  // namespace qv3
