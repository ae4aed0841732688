#include "tests/app/programrig.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QLineEdit>

#include "recording/recorder.h"
#include "recording/sessionfile.h"

namespace qv3::test {

bool ToldWaiter::wait(double seconds) {
  givenUp = false;
  m_told.steady += std::chrono::duration_cast<Instant>(std::chrono::duration<double>(seconds));
  m_told.timeOfDay += seconds;
  if (during) during();
  for (int turn = 0; turn < 3; ++turn) QCoreApplication::processEvents();
  return !givenUp;
}

ProgramRig::ProgramRig() {
  QDir::setCurrent(home.path());
  files.contents["/data/dummy.mp3"] = "silence";
  files.folders = {home.path().toStdString()};
}

ProgramRig::~ProgramRig() {
  program.reset();
}

void ProgramRig::plugIn(int number, const std::string& model) {
  port.nodes[pathOf(number)] = {};
  if (!model.empty()) m_models[pathOf(number)] = model;
}

void ProgramRig::leaveConfig(int autoSaveMode, int comPort, int knob, const char* place) {
  const std::string text = '"' + iniPath() + "\"\n" + std::to_string(autoSaveMode) + '\n' +
                           std::to_string(comPort) + '\n' + std::to_string(knob) + '\n' + place;
  leaveFile(configPath(), text);
}

void ProgramRig::leaveFile(const std::string& path, const std::string& text) {
  ASSERT_TRUE(store.replace(path, text).ok());
  files.contents[path] = text;
}

std::string ProgramRig::leaveSession(const char* name, int count) {
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

void ProgramRig::begin() {
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

void ProgramRig::start() {
  begin();
  for (int turn = 0; turn < 50 && !up(); ++turn) turnOver();
  ASSERT_TRUE(up());
}

void ProgramRig::startWith(const std::string& settings) {
  leaveSettings(settings);
  start();
}

void ProgramRig::startLive(const std::string& settings, const char* model, int knob) {
  plugIn(1, model);
  leaveConfig(0, 1, knob);
  startWith(settings);
}

bool ProgramRig::up() const {
  const bool comes = operation() == Operation::Starting || operation() == Operation::Probing;
  return window().isVisible() && !comes;
}

void ProgramRig::pass(std::chrono::milliseconds time) {
  for (; time.count() > 0 && !ended; time -= kTurn) turn(std::min(time, kTurn));
  turnOver();
}

void ProgramRig::frames(int count, const char* frame) {
  for (int n = 0; n < count && !ended; ++n) {
    turn(kTurn);
    port.feed(frame);
  }
  turnOver();
}

void ProgramRig::turnOver() {
  for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ProgramRig::click(const char* name) {
  turnOver();
  auto* button = find(name);
  ASSERT_TRUE(button != nullptr && button->isVisible() && button->isEnabled()) << name;
  QTest::mouseClick(button, Qt::LeftButton);
  turnOver();
}

QAction* ProgramRig::item(std::string_view name) const {
  QCoreApplication::sendPostedEvents(&window(), QEvent::MetaCall);
  return find<QAction>(std::string(name).c_str());
}

void ProgramRig::trigger(std::string_view name) {
  QAction* action = item(name);
  ASSERT_NE(action, nullptr) << name;
  ASSERT_TRUE(action->isEnabled()) << name;
  action->trigger();
  turnOver();
}

bool ProgramRig::opens(const char* name) const {
  return QTest::qWaitFor([&] { return dialog(name) != nullptr; });
}

QDialog* ProgramRig::openDialog() {
  return qobject_cast<QDialog*>(QApplication::activeModalWidget());
}

void ProgramRig::press(const char* box, QMessageBox::StandardButton button) {
  ASSERT_TRUE(opens(box)) << box;
  dialog<QMessageBox>(box)->button(button)->click();
  turnOver();
}

void ProgramRig::chooseFile(QFileDialog& chooser, const std::string& path) {
  chooser.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
      ->setText(QString::fromStdString(path));
  static_cast<QDialog&>(chooser).accept();
  turnOver();
}

void ProgramRig::chooseFile(const char* name, const std::string& path) {
  ASSERT_TRUE(opens(name)) << name;
  chooseFile(*dialog<QFileDialog>(name), path);
}

Surroundings ProgramRig::surroundings() {
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

void ProgramRig::answer(std::string_view text) {
  const auto model = m_models.find(port.path());
  if (text != "V\r" || model == m_models.end()) return;
  const std::string reply = "V,QV" + model->second + ",1.04,20417\r";
  QTimer::singleShot(0, &window(), [this, reply] { port.feed(reply); });
}

bool ProgramRig::eventFilter(QObject* watched, QEvent* event) {
  return event->type() == QEvent::Timer && !m_firing && watched->objectName().startsWith("tmr");
}

void ProgramRig::turn(std::chrono::milliseconds time) {
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

void ProgramRig::fire(const char* name) {
  QTimer* timer = m_timers[name];
  if (ended || !timer->isActive()) return;
  m_firing = true;
  QTimerEvent event(timer->timerId());
  QCoreApplication::sendEvent(timer, &event);
  m_firing = false;
}

}  // namespace qv3::test
