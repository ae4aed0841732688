#include "tests/faults/driven.h"

#include <unistd.h>

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QTime>
#include <QTimer>
#include <algorithm>
#include <ctime>

#include "app/machine.h"

namespace qv3::test {
namespace {

/// Disks on which there is as much room as the test says, at first plenty.
class Disks final : public DiskSpace {
 public:
  std::optional<DiskRoom> room(const std::string& folder) const override {
    return m_real.room(folder) ? std::optional(DiskRoom{freeBytes, 1}) : std::nullopt;
  }

  std::uint64_t freeBytes = std::uint64_t{1} << 40;

 private:
  DiskFiles m_real;
};

QDialog* openDialog() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(widget);
    if (dialog != nullptr && dialog->isVisible()) return dialog;
  }
  return nullptr;
}

/// Time zones are told by what has to be added to get universal time.
bool shiftWallClock(int seconds) {
  const std::time_t present = std::time(nullptr);
  const auto ahead = [&] {
    std::tm local{};
    return localtime_r(&present, &local)->tm_gmtoff;
  };
  const long wanted = ahead() + seconds;
  const QTime difference = QTime(0, 0).addSecs(static_cast<int>(std::abs(wanted)));
  qputenv("TZ", (QStringLiteral("XXX") + (wanted > 0 ? '-' : '+') + difference.toString("hh:mm:ss"))
                    .toUtf8());
  tzset();
  return ahead() == wanted;
}

class User final : public QObject {
 public:
  User(Program& program, Disks& disks)
      : m_program(program), m_disks(disks), m_input(STDIN_FILENO, QSocketNotifier::Read) {
    connect(&m_input, &QSocketNotifier::activated, this, [this] { hear(); });
    m_program.window().dial().installEventFilter(this);
    m_sincePaint.start();
  }

 private:
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint) {
      m_longestStill = std::max(m_longestStill, m_sincePaint.restart());
      ++m_paints;
    }
    return false;
  }

  void hear() {
    char part[4096];
    const ssize_t count = read(STDIN_FILENO, part, sizeof part);
    if (count <= 0) std::_Exit(1);  // the tests are gone
    m_heard.append(part, static_cast<int>(count));
    for (qsizetype end = m_heard.indexOf('\n'); end >= 0; end = m_heard.indexOf('\n')) {
      const QString line = QString::fromUtf8(m_heard.left(end));
      m_heard.remove(0, end + 1);
      const bool done = carryOut(line.section(' ', 0, 0), line.section(' ', 1));
      answer(done);
    }
  }

  bool carryOut(const QString& command, const QString& what) {
    if (command == "click") return press(m_program.window().findChild<QAbstractButton*>(what));
    if (command == "menu") return trigger(m_program.window().menuBar()->findChild<QAction*>(what));
    if (command == "answer") return press(buttonOfBox(what));
    if (command == "choose") return choose(what);
    if (command == "clock") return shiftWallClock(what.toInt());
    if (command == "cancel") return cancel();
    if (command == "room") m_disks.freeBytes = what.toULongLong();
    if (command == "close") {
      QTimer::singleShot(0, &m_program.window(), [this] { m_program.window().close(); });
    }
    return true;
  }

  static bool press(QAbstractButton* button) {
    if (button == nullptr || !button->isVisible() || !button->isEnabled()) return false;
    button->click();
    return true;
  }

  static bool trigger(QAction* action) {
    if (action == nullptr || !action->isEnabled()) return false;
    action->trigger();
    return true;
  }

  static QAbstractButton* buttonOfBox(const QString& text) {
    const auto* box = qobject_cast<QMessageBox*>(openDialog());
    if (box == nullptr) return nullptr;
    for (QAbstractButton* button : box->buttons()) {
      if (button->text().remove('&') == text) return button;
    }
    return nullptr;
  }

  static bool choose(const QString& path) {
    auto* dialog = qobject_cast<QFileDialog*>(openDialog());
    if (dialog == nullptr) return false;
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(path);
    return QMetaObject::invokeMethod(dialog, "accept");
  }

  static bool cancel() {
    QDialog* dialog = openDialog();
    if (dialog != nullptr) dialog->reject();
    return dialog != nullptr;
  }

  void answer(bool done) {
    const Instrument& meter = m_program.instrument();
    const Situation situation = meter.situation();
    const QDialog* dialog = openDialog();
    const auto* box = qobject_cast<const QMessageBox*>(dialog);
    const QJsonObject object{
        {"done", done},
        {"operation", static_cast<int>(meter.operation())},
        {"programState", meter.programState()},
        {"status", QString::fromStdString(meter.state().ModeText)},
        {"unsaved", situation.unsaved},
        {"recorded", static_cast<int>(meter.recorder().records().count())},
        {"dialog", dialog != nullptr ? dialog->objectName() : QString()},
        {"text", box != nullptr ? box->text() : QString()},
        {"paints", m_paints},
        {"longestStill", static_cast<int>(std::max(m_longestStill, m_sincePaint.elapsed()))}};
    m_longestStill = 0;
    const QByteArray line = QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
    if (write(STDOUT_FILENO, line.constData(), static_cast<std::size_t>(line.size())) < 0) {
      std::_Exit(1);
    }
  }

  Program& m_program;
  Disks& m_disks;
  QSocketNotifier m_input;
  QByteArray m_heard;
  QElapsedTimer m_sincePaint;
  qint64 m_longestStill = 0;
  int m_paints = 0;
};

}  // namespace

int runDriven(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 2, argv + argc);
  const auto [options, error] = parseOptions(arguments);
  PortTable ports;
  for (const std::string& entry : options.ports) {
    if (!ports.name(entry).empty()) return 2;
  }
  const QApplication application(argc, argv);
  prepareApplication();
  Disks disks;
  Machine machine(options, std::move(ports), {&disks, {}});
  const User user(machine.program(), disks);
  QTimer::singleShot(0, &machine.program().window(), [&] { machine.program().start(); });
  const int code = QApplication::exec();
  if (!machine.shutDown()) std::_Exit(code);
  return code;
}

}  // namespace qv3::test
