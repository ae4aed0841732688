#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <chrono>
#include <list>
#include <map>
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

/// Waits for no time at all: the told clock goes on, and events have their turn.
class ToldWaiter final : public Waiter {
 public:
  explicit ToldWaiter(Now& told) : m_told(told) {}

  bool TDelay(int ticks) override { return wait(ticks * kTickSeconds); }

  bool wait(double seconds) override;

  std::function<void()> during;
  bool givenUp = false;

 private:
  Now& m_told;
};

/// The whole program in a folder of its own, with ports in memory on which meters may answer. The
/// time is told: the program's timers fire when `pass` says so and at no other time, and the sound
/// device stands where the told time says.
class ProgramRig : public QObject {
 public:
  ProgramRig();
  ~ProgramRig() override;

  // ---- What the program finds ----

  /// A meter that identifies itself; an empty model is a device that never answers.
  void plugIn(int number, const std::string& model);

  static std::string pathOf(int number) { return PortTable().path(number); }

  void leaveConfig(int autoSaveMode, int comPort, int knob = 0, const char* place = "0\n0\n0\n0\n");
  void leaveSettings(const std::string& text) { leaveFile(iniPath(), text); }
  void leaveFile(const std::string& path, const std::string& text);

  /// A session in the program's folder, of so many records, that a load finds.
  std::string leaveSession(const char* name, int count);

  std::string configPath() const { return file("qv3_Varnel.cfg"); }
  std::string iniPath() const { return file("qv3_Varnel.ini"); }
  std::string file(const char* name) const { return home.filePath(name).toStdString(); }
  std::string contents(const std::string& path) const { return store.read(path).value_or(""); }
  bool contains(const std::string& path, const char* words) const {
    return contents(path).find(words) != std::string::npos;
  }

  // ---- The program ----

  /// Makes the program, anew on the same disk; the event loop starts it.
  void begin();

  /// begin(), and the program is up.
  void start();
  void startWith(const std::string& settings);
  /// With a meter on port 1.
  void startLive(const std::string& settings = {}, const char* model = "3A", int knob = 0);

  bool up() const;

  MainWindow& window() const { return program->window(); }
  const ProgramSettings& settings() const { return program->settings(); }
  const Instrument& instrument() const { return program->instrument(); }
  Operation operation() const { return instrument().operation(); }
  const std::string& status() const { return instrument().state().ModeText; }
  QString dialWords() const { return window().dial().accessibleValue(); }

  // ---- Its time ----

  void pass(std::chrono::milliseconds time);
  void frames(int count, const char* frame = "P7000\r");
  /// What was posted, and what was put off to the event loop.
  static void turnOver();
  bool polling() { return m_timers["tmrPoll"]->isActive(); }

  // ---- Its user ----

  template <typename Object = QAbstractButton>
  Object* find(const char* name) const {
    return window().findChild<Object*>(QLatin1String(name));
  }
  void click(const char* name);

  /// As a user sees it: marks and enabling follow at the end of a turn of the event loop.
  QAction* item(std::string_view name) const;
  void trigger(std::string_view name);

  /// A dialog or box that is open, by its object name.
  template <typename Dialog = QDialog>
  Dialog* dialog(const char* name) const {
    auto* found = find<Dialog>(name);
    return found && found->isVisible() ? found : nullptr;
  }
  bool opens(const char* name) const;
  /// The dialog that takes the user's input, if any.
  static QDialog* openDialog();

  void press(const char* box, QMessageBox::StandardButton button);
  /// Typed into a file dialog and accepted.
  static void chooseFile(QFileDialog& chooser, const std::string& path);
  void chooseFile(const char* name, const std::string& path);

  QTemporaryDir home;
  DiskTextStore store;
  std::vector<std::string> log;  ///< what was done to the port
  FakePort port{log};
  Now told{Instant{0}, 43200};
  ToldWaiter waiter{told};
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
  std::function<LeftBehind()> leftBehind = [] { return LeftBehind(); };
  std::function<bool()> systemInfo = [] { return false; };
  int guideOpened = 0;
  std::unique_ptr<Program> program;

 private:
  static constexpr std::chrono::milliseconds kTurn{20};

  Surroundings surroundings();

  void answer(std::string_view text);

  bool eventFilter(QObject* watched, QEvent* event) override;

  void turn(std::chrono::milliseconds time);

  void fire(const char* name);

  std::map<std::string, std::string> m_models;
  std::map<std::string, QTimer*> m_timers;
  std::chrono::milliseconds m_sinceTick{0};
  bool m_firing = false;
  bool m_recording = false;
};

}  // namespace qv3::test
