#include "recording/dialog/transportpanel.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <set>
#include <string>

#include "instrument/commands.h"

namespace qv3 {
namespace {

TransportInputs inputsFor(const Situation& s) {
  const auto can = [&](Command command) { return allowed(command, s); };
  TransportInputs inputs;
  inputs.programState = programState(s.operation, s.meterFound);
  inputs.unsaved = s.unsaved;
  inputs.RecordingMode = inputs.saveMode = s.recordingMode;
  inputs.SavePath = s.savePathChosen ? "/takes/" : "";
  inputs.allowed = {can(Command::Record),       can(Command::Stop),
                    can(Command::Play),         can(Command::Skip),
                    can(Command::Loop),         can(Command::Load),
                    can(Command::Save),         can(Command::SaveFileAs),
                    can(Command::PositionLeft), can(Command::PositionRight)};
  return inputs;
}

class TransportPanelTest : public testing::Test {
 protected:
  TransportPanelTest() {
    m_panel.resize(m_panel.sizeHint());
    m_panel.show();
  }

  template <class T = QWidget>
  T* part(const char* name) {
    T* found = m_panel.findChild<T*>(QLatin1String(name));
    if (found == nullptr) ADD_FAILURE() << name;
    return found;
  }

  std::set<std::string> enabled() {
    std::set<std::string> names;
    for (const char* name : {"cmdRecord", "cmdStop", "cmdPlay", "cmdRev", "cmdFwd", "cmdLoop",
                             "cmdLoad", "cmdSave", "lblRecordMode", "lblLoadedFile", "cboFile"})
      if (part(name)->isEnabled()) names.insert(name);
    return names;
  }

  void enableAll() {
    TransportInputs inputs;
    inputs.programState = 1;
    inputs.allowed = {true, true, true, true, true, true, true, true, true, true};
    m_panel.setState(transportState(inputs));
    m_panel.setNumberedFiles({"000", "002"}, 0);
  }

  TransportPanel m_panel;
};

TEST_F(TransportPanelTest, ControlsFollowTheSituation) {
  struct Row {
    const char* name;
    Situation situation;
    std::set<std::string> enabled;
  };
  const auto made = [](Operation operation, bool meter, bool loaded, bool unsaved) {
    Situation s;
    s.operation = operation;
    s.meterFound = meter;
    s.sessionLoaded = loaded;
    s.unsaved = unsaved;
    s.savePathChosen = true;
    return s;
  };
  Situation noFolder = made(Operation::None, true, false, false);
  noFolder.savePathChosen = false;
  const Row rows[] = {
      {"no meter", made(Operation::None, false, false, false), {"cboFile", "cmdLoad"}},
      {"no meter, unsaved",
       made(Operation::None, false, true, true),
       {"cboFile", "cmdLoad", "cmdPlay", "cmdSave", "lblLoadedFile"}},
      {"live",
       made(Operation::None, true, false, false),
       {"cmdRecord", "cboFile", "cmdLoad", "cmdSave", "lblRecordMode"}},
      {"live, no folder", noFolder, {"cboFile", "cmdLoad", "cmdSave", "lblRecordMode"}},
      {"live, loaded",
       made(Operation::None, true, true, false),
       {"cmdRecord", "cmdPlay", "cboFile", "cmdLoad", "cmdSave", "lblLoadedFile", "lblRecordMode"}},
      {"playing",
       made(Operation::Playing, true, true, false),
       {"cmdStop", "cmdPlay", "cmdRev", "cmdFwd", "cmdLoop"}},
      {"testing", made(Operation::Testing, false, false, false), {"cmdStop"}},
      {"loading", made(Operation::Loading, true, false, false), {"lblRecordMode"}},
      {"lead-in", made(Operation::LeadIn, true, false, false), {"lblRecordMode"}},
      {"recording", made(Operation::Recording, true, false, false), {"cmdStop", "lblRecordMode"}},
  };
  m_panel.setNumberedFiles({"000", "001"}, 1);
  for (const Row& row : rows) {
    m_panel.setState(transportState(inputsFor(row.situation)));
    EXPECT_EQ(enabled(), row.enabled) << row.name;
  }
}

TEST_F(TransportPanelTest, ClicksAndReturnBecomeSignals) {
  struct Row {
    const char* name;
    void (TransportPanel::*signal)();
  };
  const Row rows[] = {
      {"cmdRecord", &TransportPanel::recordClicked},
      {"cmdStop", &TransportPanel::stopClicked},
      {"cmdPlay", &TransportPanel::playClicked},
      {"cmdRev", &TransportPanel::revClicked},
      {"cmdFwd", &TransportPanel::fwdClicked},
      {"cmdLoop", &TransportPanel::loopClicked},
      {"cmdLoad", &TransportPanel::loadClicked},
      {"cmdSave", &TransportPanel::saveClicked},
      {"lblLoadedFile", &TransportPanel::saveFileAsClicked},
  };
  enableAll();
  for (const Row& row : rows) {
    QSignalSpy heard(&m_panel, row.signal);
    QTest::mouseClick(part(row.name), Qt::LeftButton);
    EXPECT_EQ(heard.count(), 1) << row.name;
    QTest::keyClick(part(row.name), Qt::Key_Return);
    EXPECT_EQ(heard.count(), 2) << row.name;
  }
}

TEST_F(TransportPanelTest, RightButtonOnLoadAsksForTheNumberedFiles) {
  QSignalSpy numbered(&m_panel, &TransportPanel::numberedFilesRequested);
  QSignalSpy load(&m_panel, &TransportPanel::loadClicked);
  QTest::mouseClick(part("cmdLoad"), Qt::RightButton);
  EXPECT_EQ(numbered.count(), 0) << "off";
  enableAll();
  QTest::mouseClick(part("cmdLoad"), Qt::RightButton);
  EXPECT_EQ(numbered.count(), 1);
  QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {1, 1}, {1, 1});
  QApplication::sendEvent(part("cmdLoad"), &menuKey);
  EXPECT_EQ(numbered.count(), 2);
  EXPECT_EQ(load.count(), 0);
}

TEST_F(TransportPanelTest, NumberedFilesAreChosenFromTheOpenListOnly) {
  enableAll();
  QSignalSpy chosen(&m_panel, &TransportPanel::numberedFileChosen);
  auto* list = part<FileBox>("cboFile");
  for (const int key : {Qt::Key_End, Qt::Key_2, Qt::Key_PageDown, Qt::Key_Down, Qt::Key_0})
    QTest::keyClick(list, static_cast<Qt::Key>(key));
  QWheelEvent wheel({5, 5}, list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(list, &wheel);
  EXPECT_EQ(list->currentText(), "000");
  EXPECT_EQ(chosen.count(), 0);

  QTest::keyClick(list, Qt::Key_Return);
  QWidget* popup = QApplication::activePopupWidget();
  ASSERT_NE(popup, nullptr);
  QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : popup,
                  Qt::Key_Down);
  QTest::keyClick(QApplication::focusWidget() != nullptr ? QApplication::focusWidget() : popup,
                  Qt::Key_Return);
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen.at(0).at(0).toString(), "002");

  m_panel.setNumberedFiles({}, -1);
  EXPECT_FALSE(list->isEnabled());
}

/// Counts the keys that no control took.
class Window : public QWidget {
 public:
  int keys = 0;

 protected:
  void keyPressEvent(QKeyEvent*) override { ++keys; }
};

TEST_F(TransportPanelTest, InstrumentKeysPassThroughEveryControl) {
  Window window;
  m_panel.setParent(&window);
  enableAll();
  QSignalSpy record(&m_panel, &TransportPanel::recordClicked);
  int sent = 0;
  for (QWidget* control : m_panel.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Up, Qt::Key_Down, Qt::Key_R, Qt::Key_S,
                              Qt::Key_L, Qt::Key_Less, Qt::Key_Insert}) {
      QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, QKeySequence(key).toString());
      QApplication::sendEvent(control, &press);
      QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
      QApplication::sendEvent(control, &release);
      ++sent;
      EXPECT_EQ(window.keys, sent) << control->objectName().toStdString() << " took " << key;
    }
  }
  EXPECT_EQ(record.count(), 0);
  m_panel.setParent(nullptr);
}

TEST_F(TransportPanelTest, EverythingIsNamedAndReachedByTab) {
  enableAll();
  std::set<std::string> reached;
  for (QWidget* widget = m_panel.nextInFocusChain(); widget != &m_panel;
       widget = widget->nextInFocusChain()) {
    if (widget->parentWidget() == &m_panel && (widget->focusPolicy() & Qt::TabFocus) != 0)
      reached.insert(widget->objectName().toStdString());
  }
  EXPECT_EQ(reached, (std::set<std::string>{"cmdRecord", "cmdStop", "cmdPlay", "cmdRev", "cmdFwd",
                                            "cmdLoop", "picFilePosition", "lblLoadedFile",
                                            "cboFile", "cmdLoad", "cmdSave"}));
  m_panel.setTag("3");
  m_panel.setPlayTime(65);
  const auto words = [&](const char* name, QAccessible::Text kind) {
    return QAccessible::queryAccessibleInterface(part(name))->text(kind).toStdString();
  };
  for (const QWidget* control : m_panel.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    const std::string name = control->objectName().toStdString();
    EXPECT_NE(words(name.c_str(), QAccessible::Name), "") << name;
  }
  EXPECT_EQ(words("lblTag", QAccessible::Description), "3");
  EXPECT_EQ(words("lblPlayTime", QAccessible::Description), "0:01:05");
  EXPECT_EQ(words("cmdSave", QAccessible::Name), "Settings");
}

TEST_F(TransportPanelTest, ReadOuts) {
  const auto text = [&](const char* name) { return part(name)->property("text").toString(); };
  EXPECT_EQ(text("lblLoadedFile"), "No File Loaded");
  EXPECT_EQ(part("lblLoadedFile")->toolTip(), "No File Loaded");
  m_panel.setLoadedFile("Take_001", "/takes/Take_001");
  m_panel.setTotalTime(93839);
  m_panel.setPlayTime(3600);
  m_panel.setTag("12");
  EXPECT_EQ(text("lblTotalTime"), "26:03:59");
  EXPECT_EQ(text("lblPlayTime"), "1:00:00");
  m_panel.showNothingLoaded();
  EXPECT_EQ(text("lblLoadedFile"), "No File Loaded");
  EXPECT_EQ(text("lblTotalTime") + text("lblTag"), "");
  EXPECT_EQ(text("lblPlayTime"), "0:00:00");
}

TEST_F(TransportPanelTest, PlayTimeIsRedWhileRecording) {
  const QWidget* time = part("lblPlayTime");
  const QColor normal = time->palette().color(time->foregroundRole());
  EXPECT_NE(normal, QColor(255, 0, 0));
  TransportInputs inputs;
  inputs.programState = 3;
  m_panel.setState(transportState(inputs));
  EXPECT_EQ(time->palette().color(time->foregroundRole()), QColor(255, 0, 0));
  inputs.programState = 1;
  m_panel.setState(transportState(inputs));
  EXPECT_EQ(time->palette().color(time->foregroundRole()), normal);
}

TEST_F(TransportPanelTest, GrowsWithTheFontAndCutsNothing) {
  EXPECT_EQ(m_panel.neededHeight(), 83);
  QSignalSpy changed(&m_panel, &TransportPanel::neededHeightChanged);
  enableAll();
  m_panel.setTag("123");
  for (const int points : {8, 12, 16, 20}) {
    QFont font = m_panel.font();
    font.setPointSize(points);
    m_panel.setFont(font);
    EXPECT_GE(m_panel.neededHeight(), 83);
    for (const int width : {700, 896, 1280, 1920, 2560}) {
      m_panel.resize(width, m_panel.neededHeight());
      for (const QWidget* control : m_panel.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        const std::string what = control->objectName().toStdString() + " at " +
                                 std::to_string(points) + " pt, " + std::to_string(width);
        EXPECT_TRUE(m_panel.rect().contains(control->geometry())) << what;
        if (control->inherits("QLabel") || control->objectName() == "lblLoadedFile") {
          EXPECT_GE(control->height(), control->fontMetrics().height()) << what;
        }
      }
    }
  }
  EXPECT_GT(m_panel.neededHeight(), 83);
  EXPECT_GE(changed.count(), 4);
}

}  // namespace
}  // namespace qv3
