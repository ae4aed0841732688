// What assistive technology sees of a `ValueWidget`, and of lines between controls.

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFrame>
#include <QPointer>

#include "display/accessiblevalue.h"

namespace qv3 {

namespace {

/// One part of a surface. It has no object of its own, so the surface's interface owns it.
class PartInterface : public QAccessibleInterface {
 public:
  PartInterface(ValueWidget* surface, int index) : m_surface(surface), m_index(index) {}

  bool isValid() const override { return !m_surface.isNull(); }
  QObject* object() const override { return nullptr; }
  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(m_surface);
  }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }

  QString text(QAccessible::Text kind) const override {
    if (kind == QAccessible::Name) return part().name;
    const bool words = kind == QAccessible::Value || kind == QAccessible::Description;
    return words ? part().words : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}

  QRect rect() const override {
    const QRect place = part().place;
    if (!m_surface || place.isEmpty()) return {};
    return {m_surface->mapToGlobal(place.topLeft()), place.size()};
  }
  QAccessible::Role role() const override { return QAccessible::StaticText; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.readOnly = true;
    state.invisible = !m_surface || !m_surface->isVisible() || part().words.isEmpty();
    return state;
  }

 private:
  SurfacePart part() const {
    return m_surface ? m_surface->accessibleParts().at(static_cast<std::size_t>(m_index))
                     : SurfacePart();
  }

  QPointer<ValueWidget> m_surface;
  int m_index;
};

/// The description repeats the words where the widget has none of its own: the accessibility bus of
/// the Linux desktops carries names and descriptions, but no value that is a text.
class ValueInterface : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
  explicit ValueInterface(ValueWidget* widget)
      : QAccessibleWidget(widget, widget->accessibleRole()), m_widget(widget) {
    const auto count = static_cast<int>(widget->accessibleParts().size());
    for (int index = 0; index < count; ++index) {
      m_parts.push_back(QAccessible::registerAccessibleInterface(new PartInterface(widget, index)));
    }
  }
  ~ValueInterface() override {
    for (const QAccessible::Id part : m_parts) QAccessible::deleteAccessibleInterface(part);
  }

  QString text(QAccessible::Text kind) const override {
    const QString own = QAccessibleWidget::text(kind);
    const bool wanted = kind == QAccessible::Value || kind == QAccessible::Description;
    return wanted && own.isEmpty() ? m_widget->accessibleValue() : own;
  }

  int childCount() const override { return static_cast<int>(m_parts.size()); }
  QAccessibleInterface* child(int index) const override {
    const bool there = index >= 0 && index < childCount();
    return there ? QAccessible::accessibleInterface(m_parts[static_cast<std::size_t>(index)])
                 : nullptr;
  }
  int indexOfChild(const QAccessibleInterface* wanted) const override {
    for (int index = 0; index < childCount(); ++index) {
      if (child(index) == wanted) return index;
    }
    return -1;
  }
  QAccessibleInterface* childAt(int x, int y) const override {
    for (int index = 0; index < childCount(); ++index) {
      if (child(index)->rect().contains(x, y)) return child(index);
    }
    return nullptr;
  }

  QStringList actionNames() const override {
    QStringList names = QAccessibleWidget::actionNames();
    if (m_widget->pressable() && m_widget->isEnabled()) names.prepend(pressAction());
    if (m_widget->accessibleNumber()) names << increaseAction() << decreaseAction();
    return names;
  }
  void doAction(const QString& name) override {
    if (name == pressAction() && m_widget->pressable()) {
      m_widget->press();
    } else if (name == increaseAction() || name == decreaseAction()) {
      m_widget->stepAccessibleNumber(name == increaseAction() ? 1 : -1);
    } else {
      QAccessibleWidget::doAction(name);
    }
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type != QAccessible::ValueInterface) return QAccessibleWidget::interface_cast(type);
    return m_widget->accessibleNumber() ? static_cast<QAccessibleValueInterface*>(this) : nullptr;
  }
  QVariant currentValue() const override { return number().value; }
  void setCurrentValue(const QVariant& value) override {
    m_widget->setAccessibleNumber(value.toDouble());
  }
  QVariant minimumValue() const override { return number().least; }
  QVariant maximumValue() const override { return number().most; }
  QVariant minimumStepSize() const override { return {}; }

 private:
  SurfaceNumber number() const { return m_widget->accessibleNumber().value_or(SurfaceNumber()); }

  ValueWidget* m_widget;
  std::vector<QAccessible::Id> m_parts;
};

/// A line that parts what is above it from what is below. The toolkit tells it as a frame.
bool isLine(const QFrame& frame) {
  return frame.frameShape() == QFrame::HLine || frame.frameShape() == QFrame::VLine;
}

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  if (auto* widget = qobject_cast<ValueWidget*>(object)) return new ValueInterface(widget);
  auto* frame = qobject_cast<QFrame*>(object);
  if (frame == nullptr || !isLine(*frame)) return nullptr;
  return new QAccessibleWidget(frame, QAccessible::Separator);
}

}  // namespace

void installAccessibleValues() {
  QAccessible::installFactory(makeInterface);
}

}  // namespace qv3
