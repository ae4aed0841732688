#include "app/window/keyfilter.h"

#include <QApplication>
#include <QMenuBar>
#include <QWindow>
#include <utility>

#include "app/commandtable.h"

namespace qv3 {

KeyFilter::KeyFilter(QWidget& window, Keys keys) : m_window(window), m_keys(std::move(keys)) {
  qApp->installEventFilter(this);
}

bool KeyFilter::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
      return windowHasKeys(watched) && pressed(static_cast<QKeyEvent&>(*event));
    case QEvent::KeyRelease:
      if (watched == m_window.windowHandle()) released(static_cast<QKeyEvent&>(*event));
      return false;
    case QEvent::WindowDeactivate:
      if (watched == &m_window) focusLost();
      return false;
    default:
      return false;
  }
}

/// The native window gets each key once, before any widget; widgets pass it on from one to the
/// next. While a menu is open the keys arrive there too.
bool KeyFilter::windowHasKeys(const QObject* watched) const {
  if (watched != m_window.windowHandle()) return false;
  if (QApplication::activePopupWidget() != nullptr) return false;
  return qobject_cast<QMenuBar*>(QApplication::focusWidget()) == nullptr;
}

bool KeyFilter::pressed(const QKeyEvent& event) {
  constexpr Qt::KeyboardModifiers kForeign =
      Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
  if (event.modifiers().testAnyFlags(kForeign)) return false;
  const bool repeated = tellRelease(event) || event.isAutoRepeat();
  m_held = true;
  const bool consumed =
      m_keys.down(keyFor(event.key(), event.modifiers().testFlag(Qt::ShiftModifier)));
  const bool presses = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
  return consumed || (presses && repeated);
}

void KeyFilter::released(const QKeyEvent& event) {
  if (event.isAutoRepeat()) return;
  m_held = false;
  m_release = {event.key(), event.timestamp()};
}

/// The repeats of a held key may come as pairs of a release and a press at the same millisecond,
/// with nothing else that tells them from a hand's (X11). A release acts on nothing but the presses
/// after it, so it can wait for the next one. True: the press repeats the key.
bool KeyFilter::tellRelease(const QKeyEvent& press) {
  const auto release = std::exchange(m_release, {});
  if (!release) return false;
  const bool repeated =
      press.timestamp() != 0 && release->time == press.timestamp() && release->key == press.key();
  if (!repeated) m_keys.up();
  return repeated;
}

/// The release goes to whoever has the focus then.
void KeyFilter::focusLost() {
  if (!m_held) return;
  m_held = false;
  m_keys.up();
}

}  // namespace qv3
