#pragma once

#include <QFileDialog>
#include <QLineEdit>
#include <chrono>
#include <map>

#include "recording/recorder.h"
#include "recording/sessionfile.h"
#include "tests/app/programrig.h"

namespace qv3::test {

/// Waits for no time at all: the told clock goes on, and events have their turn.
class ToldWaiter final : public Waiter {
 public:
  explicit ToldWaiter(std::optional<Now>& told) : m_told(told) {}

  bool TDelay(int ticks) override { return wait(ticks * kTickSeconds); }

  bool wait(double seconds) override {
    givenUp = false;
    const auto span = std::chrono::duration<double>(seconds);
    m_told->steady += std::chrono::duration_cast<Instant>(span);
    m_told->timeOfDay += seconds;
    if (during) during();
    for (int turn = 0; turn < 3; ++turn) QCoreApplication::processEvents();
    return !givenUp;
  }

  std::function<void()> during;
  bool givenUp = false;

 private:
  std::optional<Now>& m_told;
};

/// The whole program with a meter on port 1 and the time told: its timers fire when `pass` says so
/// and at no other time, the sound device stands where the told time says.
class ToldProgram : public QObject, public ProgramRig {
 public:
  static constexpr std::chrono::milliseconds kTurn{20};

  ToldProgram() {
    told = Now{Instant{0}, 43200};
    waiter = &brisk;
    giveUp = [this] { brisk.givenUp = true; };
    files.contents["/data/dummy.mp3"] = "silence";
    files.folders = {home.path().toStdString()};
    plugIn(1, "3A");
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
    const std::string path = file(name);
    files.contents[path] = std::string(bytes.begin(), bytes.end());
    EXPECT_TRUE(store.replace(path, files.contents[path]).ok());
    return path;
  }

  /// Starts it anew on the same disk.
  void startTold() {
    begin();
    for (const char* name : {"tmrClock", "tmrWakeUp", "tmrPoll"}) {
      m_timers[name] = window().findChild<QTimer*>(QLatin1String(name));
      m_timers[name]->installEventFilter(this);
    }
    for (int turn = 0; turn < 50 && !up(); ++turn) turnOver();
  }

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

  /// Typed into a file dialog and accepted.
  static void chooseFile(QFileDialog& chooser, const std::string& path) {
    chooser.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QString::fromStdString(path));
    static_cast<QDialog&>(chooser).accept();
    turnOver();
  }

  bool polling() { return m_timers["tmrPoll"]->isActive(); }
  Operation operation() const { return instrument().operation(); }

  /// The dialog that takes the user's input, if any.
  static QDialog* openDialog() { return qobject_cast<QDialog*>(QApplication::activeModalWidget()); }

  ToldWaiter brisk{told};

 private:
  bool eventFilter(QObject* watched, QEvent* event) override {
    return event->type() == QEvent::Timer && !m_firing && watched->objectName().startsWith("tmr");
  }

  void turn(std::chrono::milliseconds time) {
    told->steady += time;
    told->timeOfDay += std::chrono::duration<double>(time).count();
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
    if (ended || timer == nullptr || !timer->isActive()) return;
    m_firing = true;
    QTimerEvent event(timer->timerId());
    QCoreApplication::sendEvent(timer, &event);
    m_firing = false;
  }

  std::map<std::string, QTimer*> m_timers;
  std::chrono::milliseconds m_sinceTick{0};
  bool m_firing = false;
  bool m_recording = false;
};

}  // namespace qv3::test
