#pragma once

#include <QAccessible>
#include <QAction>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <functional>
#include <string>
#include <vector>

namespace qv3::test {

/// Calls `visit` with everything that assistive technology finds in a window, and where it is.
using Visit = std::function<void(const QAccessibleInterface&, const std::string& path)>;

inline void walkAccessibles(const QAccessibleInterface& face, const Visit& visit,
                            const std::string& above = {}) {
  std::string path = above + "/part";
  if (const QObject* object = face.object(); object != nullptr) {
    path =
        above + '/' + object->metaObject()->className() + ' ' + object->objectName().toStdString();
  }
  visit(face, path);
  for (int index = 0; index < face.childCount(); ++index) {
    const QAccessibleInterface* child = face.child(index);
    if (child == nullptr || !child->isValid() || face.indexOfChild(child) != index) {
      visit(face, path + " has no proper child " + std::to_string(index));
    } else {
      walkAccessibles(*child, visit, path);
    }
  }
}

inline void walkAccessibles(QWidget& window, const Visit& visit) {
  walkAccessibles(*QAccessible::queryAccessibleInterface(&window), visit);
}

/// Lines that part others, the toolkit's rows of buttons, and items that are never shown.
inline bool needsNoName(const QAccessibleInterface& face) {
  const auto* action = qobject_cast<const QAction*>(face.object());
  if (action != nullptr && !action->isVisible()) return true;
  if (qobject_cast<const QDialogButtonBox*>(face.object()) != nullptr) return true;
  return face.role() == QAccessible::Separator;
}

/// Where something has no name or no role.
inline std::vector<std::string> namelessIn(QWidget& window) {
  std::vector<std::string> found;
  walkAccessibles(window, [&](const QAccessibleInterface& face, const std::string& path) {
    const bool named = needsNoName(face) || !face.text(QAccessible::Name).trimmed().isEmpty();
    if (named && face.role() != QAccessible::NoRole && path.find(" no proper ") == path.npos)
      return;
    found.push_back(path + ", role " + std::to_string(face.role()));
  });
  return found;
}

/// Its insides are the toolkit's, and so are boxes over it.
inline bool isToolkits(const QWidget& window) {
  return qobject_cast<const QFileDialog*>(&window) != nullptr ||
         qobject_cast<const QColorDialog*>(&window) != nullptr ||
         (window.parentWidget() != nullptr && isToolkits(*window.parentWidget()));
}

}  // namespace qv3::test
