#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
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
#include "recording/recorder.h"
#include "recording/sessionfile.h"
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

  bool wait(double seconds) override {
    givenUp = false;
    m_told.steady += std::chrono::duration_cast<Instant>(std::chrono::duration<double>(seconds));
    m_told.timeOfDay += seconds;
    if (during) during();
    for (int turn = 0; turn < 3; ++turn) QCoreApplication::processEvents();
    return !givenUp;
  }

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
  ProgramRig() {
    QDir::setCurrent(home.path());
    files.contents["/data/dummy.mp3"] = "silence";
    files.folders = {home.path().toStdString()};
  }
  ~ProgramRig() override { program.reset(); }

  // ---- What the program finds ----

  /// A meter that identifies itself; an empty model is a device that never answers.
  void plugIn(int number, const std::string& model) {
    port.nodes[pathOf(number)] = {};
    if (!model.empty()) m_models[pathOf(number)] = model;
  }

  static std::string pathOf(int number) { return PortTable().path(number); }

  void leaveConfig(int autoSaveMode, int comPort, int knob = 0,
                   const char* place = "0\n0\n0\n0\n") {
    const std::string text = '"' + iniPath() + "\"\n" + std::to_string(autoSaveMode) + '\n' +
                             std::to_string(comPort) + '\n' + std::to_string(knob) + '\n' + place;
    leaveFile(configPath(), text);
  }
  void leaveSettings(const std::string& text) { leaveFile(iniPath(), text); }
  void leaveFile(const std::string& path, const std::string& text) {
    ASSERT_TRUE(store.replace(path, text).ok());
    files.contents[path] = text;
  }

  /// A session in the program's folder, of so many records, that a load finds.
  std::string leaveSession(const char* name, int count) {
    RecordBuffer records;
    for (int n = 1; n <= count; ++n) {
      SampleRecord record;
      record.Time = n * 20;
      record.PacketType = 'P';
      record.KnobPosition = 5;
      records.append(record);
    }
    const auto bytes = fileBytes(records, SessionStart{3600, 6210}, {});
    leaveFile(file(name), std::string(bytes.begin(), bytes.end()));
    return file(name);
  }

  std::string configPath() const { return file("qv3_Varnel.cfg"); }
  std::string iniPath() const { return file("qv3_Varnel.ini"); }
  std::string file(const char* name) const { return home.filePath(name).toStdString(); }
  std::string contents(const std::string& path) const { return store.read(path).value_or(""); }
  bool contains(const std::string& path, const char* words) const {
    return contents(path).find(words) != std::string::npos;
  }

  // ---- The program ----

  /// Makes the program, anew on the same disk; the event loop starts it.
  void begin() {
    program.reset();
    ended = false;
    port.onSend = [this](std::string_view text) { answer(text); };
    program = std::make_unique<Program>(surroundings());
    QTimer::singleShot(0, &window(), [this] { program->start(); });
    for (const char* name : {"tmrClock", "tmrWakeUp", "tmrPoll"}) {
      m_timers[name] = find<QTimer>(name);
      m_timers[name]->installEventFilter(this);
    }
  }

  /// begin(), and the program is up.
  void start() {
    begin();
    for (int turn = 0; turn < 50 && !up(); ++turn) turnOver();
    ASSERT_TRUE(up());
  }
  void startWith(const std::string& settings) {
    leaveSettings(settings);
    start();
  }
  /// With a meter on port 1.
  void startLive(const std::string& settings = {}, const char* model = "3A", int knob = 0) {
    plugIn(1, model);
    leaveConfig(0, 1, knob);
    startWith(settings);
  }

  bool up() const {
    const bool comes = operation() == Operation::Starting || operation() == Operation::Probing;
    return window().isVisible() && !comes;
  }

  MainWindow& window() const { return program->window(); }
  const ProgramSettings& settings() const { return program->settings(); }
  const Instrument& instrument() const { return program->instrument(); }
  Operation operation() const { return instrument().operation(); }
  const std::string& status() const { return instrument().state().ModeText; }
  QString dialWords() const { return window().dial().accessibleValue(); }

  // ---- Its time ----

  void pass(std::chrono::milliseconds time) {
    for (; time.count() > 0 && !ended; time -= kTurn) turn(std::min(time, kTurn));
    turnOver();
  }
  void frames(int count, const char* frame = "P7000\r") {
    for (int n = 0; n < count && !ended; ++n) {
      turn(kTurn);
      port.feed(frame);
    }
    turnOver();
  }
  /// What was posted, and what was put off to the event loop.
  static void turnOver() {
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  bool polling() { return m_timers["tmrPoll"]->isActive(); }

  // ---- Its user ----

  template <typename Object = QAbstractButton>
  Object* find(const char* name) const {
    return window().findChild<Object*>(QLatin1String(name));
  }
  void click(const char* name) {
    turnOver();
    auto* button = find(name);
    ASSERT_TRUE(button != nullptr && button->isVisible() && button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
    turnOver();
  }

  /// As a user sees it: marks and enabling follow at the end of a turn of the event loop.
  QAction* item(std::string_view name) const {
    QCoreApplication::sendPostedEvents(&window(), QEvent::MetaCall);
    return find<QAction>(std::string(name).c_str());
  }
  void trigger(std::string_view name) {
    QAction* action = item(name);
    ASSERT_NE(action, nullptr) << name;
    ASSERT_TRUE(action->isEnabled()) << name;
    action->trigger();
    turnOver();
  }

  /// A dialog or box that is open, by its object name.
  template <typename Dialog = QDialog>
  Dialog* dialog(const char* name) const {
    auto* found = find<Dialog>(name);
    return found && found->isVisible() ? found : nullptr;
  }
  bool opens(const char* name) const {
    return QTest::qWaitFor([&] { return dialog(name) != nullptr; });
  }
  /// The dialog that takes the user's input, if any.
  static QDialog* openDialog() { return qobject_cast<QDialog*>(QApplication::activeModalWidget()); }

  void press(const char* box, QMessageBox::StandardButton button) {
    ASSERT_TRUE(opens(box)) << box;
    dialog<QMessageBox>(box)->button(button)->click();
    turnOver();
  }
  /// Typed into a file dialog and accepted.
  static void chooseFile(QFileDialog& chooser, const std::string& path) {
    chooser.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QString::fromStdString(path));
    static_cast<QDialog&>(chooser).accept();
    turnOver();
  }
  void chooseFile(const char* name, const std::string& path) {
    ASSERT_TRUE(opens(name)) << name;
    chooseFile(*dialog<QFileDialog>(name), path);
  }

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

  Surroundings surroundings() {
    return {port,
            PortTable(),
            waiter,
            [this] { waiter.givenUp = true; },
            store,
            home.path().toStdString(),
            [this] {
              return StoreResult{enterFails || !QDir::setCurrent(home.path()) ? "no folder" : ""};
            },
            [this] { return told; },
            [] {
              return QDateTime({2021, 3, 4}, {15, 20});
            },
            [this] { ended = true; },
            {media, noSpool, files, noDisk,
             [this] { return std::make_unique<FakeJournal>(journals.emplace_back()); },
             "/data/dummy.mp3", [this] { ++beeps; }, [this] { return leftBehind(); }},
            {[this] { return systemInfo(); }, [this] { ++guideOpened; }},
            captureFile,
            sessionFile,
            file("samples")};
  }

  void answer(std::string_view text) {
    const auto model = m_models.find(port.path());
    if (text != "V\r" || model == m_models.end()) return;
    const std::string reply = "V,QV" + model->second + ",1.04,20417\r";
    QTimer::singleShot(0, &window(), [this, reply] { port.feed(reply); });
  }

  bool eventFilter(QObject* watched, QEvent* event) override {
    return event->type() == QEvent::Timer && !m_firing && watched->objectName().startsWith("tmr");
  }

  void turn(std::chrono::milliseconds time) {
    told.steady += time;
    told.timeOfDay += std::chrono::duration<double>(time).count();
    if (media.mode == "playing") media.position += time.count();
    const bool recording = media.mode == "recording";
    if (recording && !m_recording) media.position = 0;
    if (recording) media.position += kSoundBytesPerSecond * time.count() / 1000;
    m_recording = recording;
    m_sinceTick += time;
    fire("tmrWakeUp");
    fire("tmrPoll");
    if (m_sinceTick < std::chrono::milliseconds{800}) return;
    m_sinceTick = {};
    fire("tmrClock");
  }

  void fire(const char* name) {
    QTimer* timer = m_timers[name];
    if (ended || !timer->isActive()) return;
    m_firing = true;
    QTimerEvent event(timer->timerId());
    QCoreApplication::sendEvent(timer, &event);
    m_firing = false;
  }

  std::map<std::string, std::string> m_models;
  std::map<std::string, QTimer*> m_timers;
  std::chrono::milliseconds m_sinceTick{0};
  bool m_firing = false;
  bool m_recording = false;
};

}  // namespace qv3::test
