#pragma once

#include <QString>
#include <QWidget>

namespace qv3 {

/// A widget whose picture stands for a value: what a sighted user reads off it, assistive
/// technology reads from `accessibleValue()`. A read-out derives from this, sets its
/// `accessibleName` and calls `tellAccessibleValue()` whenever the value may have changed.
class ValueWidget : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  /// The value in words, such as "2.35" or "Needle at SET".
  virtual QString accessibleValue() const = 0;

 protected:
  /// Tells listeners if the words differ from those told last. Composes no text while nobody
  /// listens, so it may be called at the rate of the readings.
  void tellAccessibleValue();

 private:
  QString m_told;
};

/// Makes every `ValueWidget` speak its value. Called once, after the application object exists and
/// before its first window.
void installAccessibleValues();

}  // namespace qv3
