#include "display/accessiblevalue.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace qv3 {

namespace {

/// The description repeats the words where the widget has none of its own: the accessibility bus of
/// the Linux desktops carries names and descriptions, but no value that is a text.
class ValueInterface : public QAccessibleWidget {
 public:
  explicit ValueInterface(ValueWidget* widget)
      : QAccessibleWidget(widget, QAccessible::Indicator), m_widget(widget) {}

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    const bool wanted = kind == QAccessible::Value || kind == QAccessible::Description;
    return wanted && own.isEmpty() ? m_widget->accessibleValue() : own;
  }

 private:
  const ValueWidget* m_widget;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* widget = qobject_cast<ValueWidget*>(object);
  return widget ? new ValueInterface(widget) : nullptr;
}

}  // namespace

void ValueWidget::tellAccessibleValue() {
  if (!QAccessible::isActive()) return;
  const QString words = accessibleValue();
  if (words == m_told) return;
  m_told = words;
  QAccessibleValueChangeEvent value(this, words);
  QAccessible::updateAccessibility(&value);
}

void installAccessibleValues() {
  QAccessible::installFactory(makeInterface);
}

}  // namespace qv3
