#pragma once

#include <QAction>
#include <QCoreApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "app/program.h"
#include "settings/disktextstore.h"
#include "tests/support/fakemedia.h"
#include "tests/support/fakeport.h"
#include "tests/support/fakesession.h"
#include "tests/support/memoryfiles.h"

namespace qv3::test {

/// Waits so much shorter than it is asked to, with events going on.
class HastyWaiter final : public Waiter {
 public:
  static constexpr int kHaste = 50;

  bool TDelay(int ticks) override { return wait(ticks * kTickSeconds); }

  bool wait(double seconds) override {
    givenUp = false;
    if (during) during();
    QElapsedTimer passed;
    passed.start();
    const int span = static_cast<int>(seconds * 1000 / kHaste) + 1;
    do {
      QCoreApplication::processEvents(QEventLoop::AllEvents, span);
    } while (!givenUp && !passed.hasExpired(span));
    return !givenUp;
  }

  std::function<void()> during;
  bool givenUp = false;
};

/// The whole program in a folder of its own, with ports in memory on which meters may answer.
class ProgramRig {
 public:
  ProgramRig() { QDir::setCurrent(home.path()); }
  ~ProgramRig() { program.reset(); }

  /// A meter that identifies itself; an empty model is a device that never answers.
  void plugIn(int number, const std::string& model) {
    port.nodes[pathOf(number)] = {};
    if (model.empty()) return;
    m_models[pathOf(number)] = model;
  }

  static std::string pathOf(int number) { return PortTable().path(number); }

  /// What an earlier run left behind.
  void leaveConfig(int autoSaveMode, int comPort, int knob = 0,
                   const char* place = "0\n0\n0\n0\n") {
    const std::string text = '"' + iniPath() + "\"\n" + std::to_string(autoSaveMode) + '\n' +
                             std::to_string(comPort) + '\n' + std::to_string(knob) + '\n' + place;
    ASSERT_TRUE(store.replace(configPath(), text).ok());
  }
  void leaveSettings(const std::string& text) { ASSERT_TRUE(store.replace(iniPath(), text).ok()); }

  std::string configPath() const { return file("qv3_Varnel.cfg"); }
  std::string iniPath() const { return file("qv3_Varnel.ini"); }
  std::string file(const char* name) const { return home.filePath(name).toStdString(); }
  std::string contents(const std::string& path) const { return store.read(path).value_or(""); }

  /// Makes the program and starts it as the event loop would.
  void begin() {
    program.reset();
    ended = false;
    port.onSend = [this](std::string_view text) { answer(text); };
    program = std::make_unique<Program>(Surroundings{
        port,
        PortTable(),
        waiter ? *waiter : hasty,
        [this] {
          hasty.givenUp = true;
          if (giveUp) giveUp();
        },
        store,
        home.path().toStdString(),
        [this] {
          return StoreResult{enterFails || !QDir::setCurrent(home.path()) ? "no folder" : ""};
        },
        [this] { return now(); },
        [] {
          return QDateTime({2021, 3, 4}, {15, 20});
        },
        [this] { ended = true; },
        {media, noSpool, files, noDisk,
         [this] {
           journals.emplace_back();
           return std::make_unique<FakeJournal>(journals.back());
         },
         "/data/dummy.mp3", [this] { ++beeps; },
         [this] { return leftBehind ? leftBehind() : LeftBehind(); }},
        {[this] { return systemInfo(); }, [this] { ++guideOpened; }},
        captureFile,
        sessionFile});
    QTimer::singleShot(0, &program->window(), [this] { program->start(); });
  }

  /// begin(), and waits until the program is up.
  void start() {
    begin();
    ASSERT_TRUE(QTest::qWaitFor([this] { return up(); }));
  }

  bool up() const {
    return window().isVisible() && program->instrument().operation() == Operation::None;
  }

  MainWindow& window() const { return program->window(); }
  const ProgramSettings& settings() const { return program->settings(); }
  const Instrument& instrument() const { return program->instrument(); }
  const std::string& status() const { return instrument().state().ModeText; }

  /// As a user sees it: marks and enabling follow at the end of a turn of the event loop.
  QAction* item(const char* name) const {
    QCoreApplication::sendPostedEvents(&window(), QEvent::MetaCall);
    return window().menuBar()->findChild<QAction*>(QLatin1String(name));
  }
  void trigger(const char* name) {
    QAction* action = item(name);
    ASSERT_NE(action, nullptr) << name;
    ASSERT_TRUE(action->isEnabled()) << name;
    action->trigger();
  }

  /// A dialog or box that is open, by its object name.
  template <typename Dialog = QDialog>
  Dialog* dialog(const char* name) const {
    auto* found = window().findChild<Dialog*>(QLatin1String(name));
    return found && found->isVisible() ? found : nullptr;
  }
  bool opens(const char* name) const {
    return QTest::qWaitFor([&] { return dialog(name) != nullptr; });
  }
  void press(const char* box, QMessageBox::StandardButton button) {
    ASSERT_TRUE(opens(box)) << box;
    dialog<QMessageBox>(box)->button(button)->click();
  }

  Now now() const {
    if (told) return *told;
    const std::chrono::microseconds passed{m_clock.nsecsElapsed() / 1000};
    return {passed, static_cast<float>(43200 + std::chrono::duration<double>(passed).count())};
  }

  QTemporaryDir home;
  DiskTextStore store;
  std::vector<std::string> log;  ///< what was done to the port
  FakePort port{log};
  HastyWaiter hasty;
  Waiter* waiter = nullptr;  ///< instead of the hasty one
  std::function<void()> giveUp;
  std::optional<Now> told;  ///< the time, instead of the real one
  bool enterFails = false;
  bool ended = false;
  std::string captureFile;
  std::string sessionFile;  ///< named on the command line
  int beeps = 0;
  FakeMedia media;
  NoSpool noSpool;
  NoDiskLimit noDisk;
  MemoryFiles files;
  std::list<JournalLog> journals;
  std::function<LeftBehind()> leftBehind;
  std::function<bool()> systemInfo = [] { return false; };
  int guideOpened = 0;
  std::unique_ptr<Program> program;

 private:
  void answer(std::string_view text) {
    const auto model = m_models.find(port.path());
    if (text != "V\r" || model == m_models.end()) return;
    const std::string reply = "V,QV" + model->second + ",1.04,20417\r";
    QTimer::singleShot(0, &window(), [this, reply] { port.feed(reply); });
  }

  std::map<std::string, std::string> m_models;
  QElapsedTimer m_clock = [] {
    QElapsedTimer clock;
    clock.start();
    return clock;
  }();
};

}  // namespace qv3::test
