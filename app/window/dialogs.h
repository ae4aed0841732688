#pragma once

#include <QDialog>
#include <QMessageBox>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

namespace qv3 {

/// A box with a text and buttons. `name` becomes its object name.
struct Notice {
  QString name;
  QString title;
  QString text;
};

/// Opens every dialog and box of the program. None is waited for: each is opened over the window,
/// takes all of its input, and what comes after it is called once it was answered. A box that is
/// to appear out of a timer or a receive event is raised by whoever calls, from the event loop.
class Dialogs {
 public:
  /// Over `window`, which must outlive this.
  explicit Dialogs(QWidget& window) : m_window(window) {}
  /// Closes what is open; nothing is called any more.
  ~Dialogs();
  Dialogs(const Dialogs&) = delete;
  Dialogs& operator=(const Dialogs&) = delete;

  /// An error with an OK button. With `silence` nothing is shown and `then` is called at once.
  void error(const Notice& notice, std::function<void()> then);

  /// Something the user should know, with an OK button; otherwise as `error`.
  void warning(const Notice& notice, std::function<void()> then);

  /// Yes or No; Escape, and with `silence`, No. So is Enter, and the space bar that means so much
  /// in the main window, unless `enter` says otherwise: most questions are about losing something.
  void question(const Notice& notice, std::function<void(bool yes)> then,
                QMessageBox::StandardButton enter = QMessageBox::No);

  /// One button for each of `answers`; `then` hears the index of the one pressed. Escape is the
  /// last.
  void choice(const Notice& notice, const QStringList& answers, std::function<void(int)> then);

  /// An error with Retry and Cancel; Escape is Cancel.
  void retry(const Notice& notice, std::function<void(bool again)> then);

  /// `then` hears whether the dialog was accepted; it may take values out of it.
  void open(std::unique_ptr<QDialog> dialog, std::function<void(bool accepted)> then);

  bool anyOpen() const;
  QWidget& window() { return m_window; }

  /// Answers every open dialog, and what the toolkit has opened over it, as Cancel, and every later
  /// one at once.
  void silence();
  bool silenced() const { return m_silent; }

 private:
  QWidget& m_window;
  std::vector<QPointer<QDialog>> m_open;
  bool m_silent = false;
};

}  // namespace qv3
