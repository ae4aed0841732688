#pragma once

#include <QKeyEvent>
#include <QObject>
#include <QWidget>
#include <functional>
#include <optional>

#include "instrument/controls.h"

namespace qv3 {

/// Takes the main window's keys before any control sees them. Keys with Ctrl, Alt or Meta, and
/// those of menus and dialogs, are left alone. A control that Return presses is pressed once by a
/// held key.
class KeyFilter : public QObject {
 public:
  struct Keys {
    std::function<bool(Key)> down;  ///< true: the key is consumed
    std::function<void()> up;
  };

  /// Filters from now on. `window` must outlive the filter.
  KeyFilter(QWidget& window, Keys keys);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool windowHasKeys(const QObject* watched) const;
  bool pressed(const QKeyEvent& event);
  void released(const QKeyEvent& event);
  void focusLost();
  bool tellRelease(const QKeyEvent& press);

  struct Release {
    int key;
    quint64 time;
  };

  QWidget& m_window;
  Keys m_keys;
  bool m_held = false;               ///< a press came since the last release
  std::optional<Release> m_release;  ///< told with the press that follows
};

}  // namespace qv3
