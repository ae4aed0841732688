#include "benchmarks/wholeprogram.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEventLoop>
#include <QFileDialog>
#include <QTimer>

namespace qv3::bench {
namespace {

Options inHome(const std::string& home) {
  Options options;
  options.home = home;
  return options;
}

}  // namespace

WholeProgram::WholeProgram(const std::string& home) : m_machine(inHome(home), PortTable()) {
  QTimer::singleShot(0, &program().window(), [this] { program().start(); });
  runUntil([this] { return program().window().isVisible() && doing(Operation::None); });
  runFor(std::chrono::milliseconds(500));
}

void WholeProgram::load(const std::string& path, const std::function<void()>& chosen) {
  press("cmdLoad");
  QFileDialog* dialog = nullptr;
  runUntil([&] {
    dialog = program().window().findChild<QFileDialog*>(QStringLiteral("dlgLoad"));
    return dialog != nullptr && dialog->isVisible();
  });
  dialog->selectFile(QString::fromStdString(path));
  runFor(std::chrono::milliseconds(500));
  if (chosen) chosen();
  static_cast<QDialog*>(dialog)->accept();
  runUntil([this] { return doing(Operation::None); });
}

void WholeProgram::press(const char* button) {
  auto* found = program().window().findChild<QAbstractButton*>(QLatin1String(button));
  runUntil([&] { return found->isEnabled(); });
  found->click();
}

bool WholeProgram::doing(Operation operation) {
  return program().instrument().operation() == operation;
}

void runUntil(const std::function<bool()>& reached) {
  while (!reached()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void runFor(std::chrono::milliseconds time) {
  QEventLoop loop;
  QTimer::singleShot(time, &loop, &QEventLoop::quit);
  loop.exec();
}

}  // namespace qv3::bench
