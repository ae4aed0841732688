#include <gtest/gtest.h>

#include <QLabel>
#include <QPointer>
#include <QScreen>
#include <climits>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

QWidget* splash() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == "frmQvSplash" && widget->isVisible()) return widget;
  }
  return nullptr;
}

/// What the splash says in each wait of a start.
QStringList splashDuring(ProgramRig& rig) {
  QStringList shown;
  rig.waiter.during = [&shown] {
    if (splash()) shown << splash()->findChild<QLabel*>("lblInfo")->text();
  };
  rig.start();
  rig.waiter.during = {};
  shown.removeDuplicates();
  return shown;
}

TEST(Start, AFirstStartWritesItsConfigAndComesUpInTheMiddle) {
  ProgramRig rig;
  rig.start();
  EXPECT_TRUE(rig.contents(rig.configPath()).starts_with("\"\"\r\n0\r\n0\r\n0\r\n"));
  EXPECT_FALSE(rig.store.exists(rig.iniPath()));
  EXPECT_EQ(rig.window().width(), 896);
  const QPoint off =
      rig.window().geometry().center() - rig.window().screen()->availableGeometry().center();
  EXPECT_LE(off.manhattanLength(), 8);  // the frame is not counted
  EXPECT_EQ(rig.status(), "No Meter");
  EXPECT_EQ(splash(), nullptr);
  EXPECT_EQ(rig.settings().IniPath, rig.iniPath());
}

TEST(Start, WithoutAPortNothingIsProbedOrAsked) {
  ProgramRig rig;
  rig.plugIn(1, "3A");
  EXPECT_EQ(splashDuring(rig), (QStringList{"Loading", "No Meter"}));
  EXPECT_EQ(rig.status(), "No Meter");
  for (const std::string& entry : rig.log) EXPECT_FALSE(entry.starts_with("send")) << entry;
}

TEST(Start, AConfiguredMeterIsFoundBehindTheSplash) {
  ProgramRig rig;
  rig.plugIn(9, "3A");
  rig.leaveConfig(0, 9, 33);
  EXPECT_EQ(splashDuring(rig), (QStringList{"Loading", "Checking Port 9 for Hardware"}));
  EXPECT_EQ(splash(), nullptr);
  EXPECT_EQ(rig.instrument().programState(), 1);
  EXPECT_EQ(rig.settings().KnobPosition, 33);
  // The first event comes after five characters, so the frame's end waits for the next event.
  for (const char* part : {"P1234", "\r"}) {
    rig.port.feed(part);
    EXPECT_EQ(rig.instrument().state().Reading, 0);
  }
  rig.port.feed("P1235");
  EXPECT_EQ(rig.instrument().state().Reading, 0x1234);
}

TEST(Start, APortThatIsMissingOrSilentHasAllPortsAsked) {
  for (const bool silent : {false, true}) {
    for (const int meter : {0, 2, 11}) {
      SCOPED_TRACE(testing::Message() << silent << meter);
      ProgramRig rig;
      if (silent) rig.plugIn(4, "");
      if (meter != 0) rig.plugIn(meter, "3A");
      rig.leaveConfig(0, 4);
      rig.begin();
      if (meter == 0) rig.press("msgNoHardware", QMessageBox::Cancel);
      ASSERT_TRUE(QTest::qWaitFor([&] { return rig.up(); }));
      EXPECT_EQ(rig.instrument().meterFound(), meter != 0);
      EXPECT_EQ(rig.settings().ComPort, meter != 0 ? meter : 4);
    }
  }
}

constexpr int kAnywhere = INT_MIN;  ///< on the screen

struct WindowRow {
  const char* config;
  QRect expected;  ///< without a height
  Qt::WindowStates state;
};

class WindowPlace : public testing::TestWithParam<WindowRow> {};

TEST_P(WindowPlace, IsRestoredAndKept) {
  ProgramRig rig;
  rig.leaveConfig(0, 0, 0, GetParam().config);
  rig.start();
  const CurrentWindow place = rig.window().currentPlace();
  EXPECT_EQ(place.width, GetParam().expected.width() * 15);
  EXPECT_EQ(rig.window().windowState() & ~Qt::WindowActive, GetParam().state);
  if (GetParam().expected.left() == kAnywhere) {
    EXPECT_LT(place.left, 800 * 15);
  } else {
    EXPECT_EQ(place.left, GetParam().expected.left() * 15);
    EXPECT_EQ(place.top, GetParam().expected.top() * 15);
  }
}

// The offscreen platform has one screen of 800 x 800.
INSTANTIATE_TEST_SUITE_P(
    Configs, WindowPlace,
    testing::Values(WindowRow{"750\n1500\n9000\n0\n", {50, 100, 600, 0}, {}},
                    WindowRow{"750\n1500\n9000\n2\n", {50, 100, 600, 0}, Qt::WindowMaximized},
                    WindowRow{"-3000\n0\n9000\n0\n", {-200, 0, 600, 0}, {}},
                    WindowRow{"750\n1500\n15\n0\n", {50, 100, 320, 0}, {}},
                    WindowRow{"30000\n1500\n9000\n0\n", {kAnywhere, 0, 896, 0}, {}}));

TEST(Start, AConfigThatCannotBeWrittenIsSaidAndTheStartGoesOn) {
  ProgramRig rig;
  rig.enterFails = true;
  rig.leaveSettings("[Settings]\r\nNeedleBdEnable=True\r\n");
  rig.begin();
  ASSERT_TRUE(rig.opens("msgConfigNotSaved"));
  EXPECT_FALSE(rig.item("mnuSetNeedleBDOff")->isChecked()) << "nothing is loaded yet";
  rig.press("msgConfigNotSaved", QMessageBox::Ok);
  EXPECT_TRUE(QTest::qWaitFor([&] { return rig.up(); }));
  EXPECT_FALSE(rig.item("mnuSetNeedleBDOff")->isChecked());
  EXPECT_TRUE(rig.item("mnuSetNeedleBDOn")->isChecked());
}

// ---- Its end ----

constexpr char kPlace[] = "750\n1500\n9000\n0\n";

/// The config that a run with port 0 and the knob at 17 leaves.
std::string keptConfig(const ProgramRig& rig) {
  return '"' + rig.iniPath() + "\"\r\n0\r\n0\r\n17\r\n750\r\n1500\r\n9000\r\n0\r\n";
}

TEST(Exit, WritesTheConfigAndTheRecordingSection) {
  ProgramRig rig;
  rig.leaveConfig(0, 0, 17, kPlace);
  rig.start();
  rig.trigger("mnuSettingsNeedleWidth_8");
  rig.trigger("mnuExit");
  EXPECT_TRUE(rig.ended);
  EXPECT_EQ(rig.contents(rig.configPath()), keptConfig(rig));
  EXPECT_TRUE(rig.contains(rig.iniPath(), "SavePrefix=Prefix_"));
  EXPECT_FALSE(rig.contains(rig.iniPath(), "Needle_Width"));
}

struct AutoSave {
  int mode;
  bool changed;
  bool silently;
  std::optional<QMessageBox::StandardButton> answer;
  bool saved;
};

void expectAutoSave(const AutoSave& row) {
  ProgramRig rig;
  rig.leaveConfig(row.mode, 0);
  rig.startWith("[Format]\r\nNeedle_Width=3\r\n");
  if (row.changed) rig.trigger("mnuSettingsNeedleWidth_8");
  row.silently ? rig.program->endSilently() : rig.program->choose(*findMenuRow("mnuExit"));
  if (row.answer) {
    EXPECT_FALSE(rig.ended);
    ASSERT_TRUE(rig.opens("msgSaveSettings"));
    const auto* box = rig.dialog<QMessageBox>("msgSaveSettings");
    EXPECT_EQ(box->windowTitle(), "Program settings have changed");
    EXPECT_EQ(box->text().toStdString(), "Save settings?\n\n( to " + rig.iniPath() + ")");
    rig.window().close();  // a second request changes nothing
    rig.press("msgSaveSettings", *row.answer);
  }
  EXPECT_TRUE(rig.ended);
  EXPECT_TRUE(rig.contains(rig.iniPath(), row.saved ? "Needle_Width=8" : "Needle_Width=3"));
}

TEST(Exit, AutosaveDecidesAboutTheDisplaySections) {
  for (const AutoSave& row :
       {AutoSave{0, true, false, {}, false}, AutoSave{1, true, false, {}, true},
        AutoSave{1, true, true, {}, true}, AutoSave{2, false, false, {}, false},
        AutoSave{2, true, false, QMessageBox::Yes, true},
        AutoSave{2, true, false, QMessageBox::No, false}, AutoSave{2, true, true, {}, false}}) {
    SCOPED_TRACE(testing::Message() << row.mode << row.changed << row.silently << row.saved);
    expectAutoSave(row);
  }
}

TEST(Exit, AConfigThatCannotBeWrittenIsSaidAndTheExitGoesOn) {
  ProgramRig rig;
  rig.start();
  rig.enterFails = true;
  rig.window().close();
  ASSERT_TRUE(rig.opens("msgConfigNotSaved"));
  const auto* box = rig.dialog<QMessageBox>("msgConfigNotSaved");
  EXPECT_EQ(box->windowTitle(), "Save Config File");
  EXPECT_EQ(box->text(), "Error Saving Session Config File");
  rig.press("msgConfigNotSaved", QMessageBox::Ok);
  EXPECT_TRUE(rig.ended);
  EXPECT_TRUE(rig.contains(rig.iniPath(), "[Recording]"));
}

/// A port that opens and never answers.
struct ProbedExit : testing::Test {
  ProgramRig rig;
  int waits = 0;

  /// Something happens in the midst of one of the next waits, and events go on.
  void inWait(int number, const std::function<void()>& what) {
    rig.waiter.during = [=, this] {
      if (++waits != number) return;
      EXPECT_EQ(rig.status(), "Checking Port 3 for Hardware");
      what();
    };
  }
  /// With the wait that was interrupted, or without any.
  void expectEnded(int waitsBegun) {
    ProgramRig::turnOver();
    EXPECT_TRUE(rig.ended);
    EXPECT_EQ(waits, waitsBegun);
    EXPECT_FALSE(rig.port.isOpen());
    EXPECT_TRUE(rig.contains(rig.configPath(), ".ini\"\r\n0\r\n3\r\n"));
    EXPECT_TRUE(rig.contains(rig.iniPath(), "[Recording]"));
  }
};

/// Events go on once before the window is shown; a probe has four waits.
TEST_F(ProbedExit, AtStart) {
  for (int wanted = 2; wanted <= 5; ++wanted) {
    for (const bool silently : {false, true}) {
      SCOPED_TRACE(testing::Message() << wanted << silently);
      rig.plugIn(3, "");
      rig.leaveConfig(0, 3);
      waits = 0;
      inWait(wanted, [&] {
        if (!silently) rig.window().close();
        for (int request = 0; silently && request < 2; ++request) rig.program->endSilently();
      });
      rig.begin();
      expectEnded(wanted);
    }
  }
}

TEST_F(ProbedExit, OfConnect) {
  rig.plugIn(3, "3A");
  rig.leaveConfig(0, 3);
  rig.start();
  inWait(1, [this] { rig.trigger("mnuExit"); });
  rig.trigger("mnuConnectionConnect");
  expectEnded(1);
}

TEST_F(ProbedExit, AtTheQuestionWaitsForTheAnswerButNotForASignal) {
  rig.plugIn(3, "");
  rig.leaveConfig(0, 3);
  rig.begin();
  ASSERT_TRUE(rig.opens("msgNoHardware"));
  rig.window().close();
  EXPECT_FALSE(rig.ended);
  ASSERT_TRUE(rig.opens("msgNoHardware"));
  rig.program->endSilently();
  expectEnded(0);
}

TEST(Exit, AtAnyMomentOfAStartLeavesWhatTheLastRunLeft) {
  for (int wanted = 0; wanted <= 3; ++wanted) {
    ProgramRig rig;
    rig.leaveConfig(0, 0, 17, kPlace);
    rig.leaveSettings("[Recording]\r\nSavePrefix=Mine_\r\n");
    const std::string left = rig.contents(rig.configPath());
    int waits = 0;
    rig.waiter.during = [&] {
      if (++waits == wanted) rig.program->endSilently();
    };
    rig.begin();
    if (wanted == 0) rig.program->endSilently();
    ProgramRig::turnOver();
    EXPECT_TRUE(rig.ended) << wanted;
    EXPECT_EQ(waits, wanted);
    EXPECT_EQ(rig.contents(rig.configPath()), wanted == 0 ? left : keptConfig(rig)) << wanted;
    EXPECT_TRUE(rig.contains(rig.iniPath(), "SavePrefix=Mine_")) << wanted;
  }
}

TEST(Exit, AnOpenDialogHasToBeAnsweredUnlessASignalEndsTheProgram) {
  for (const char* opener : {"mnuViewMeter", "mnuSetColDial", "mnuSaveSettingsAs"}) {
    ProgramRig rig;
    rig.start();
    rig.trigger(opener);
    ASSERT_NE(ProgramRig::openDialog(), nullptr) << opener;
    rig.window().close();
    EXPECT_FALSE(rig.ended) << opener;
    rig.program->endSilently();
    EXPECT_TRUE(rig.ended) << opener;
    EXPECT_EQ(ProgramRig::openDialog(), nullptr) << opener;
  }
}

/// A name that is missing is refused in a box of the toolkit's own, which waits in a loop.
TEST(Exit, ABoxOverAFileDialogHoldsNeitherTheInstrumentNorASignal) {
  for (const char* opener : {"mnuLoadSettings", "cmdLoad"}) {
    ProgramRig rig;
    rig.startLive();
    rig.find(opener) != nullptr ? rig.click(opener) : rig.trigger(opener);
    auto* chooser = qobject_cast<QFileDialog*>(ProgramRig::openDialog());
    ASSERT_NE(chooser, nullptr) << opener;
    bool stays = true;
    QTimer::singleShot(0, &rig.window(), [&] {
      const QPointer<QDialog> box = ProgramRig::openDialog();
      EXPECT_NE(qobject_cast<QMessageBox*>(box), nullptr) << opener;
      rig.port.lose();
      rig.pass(std::chrono::milliseconds{2400});
      EXPECT_EQ(rig.status(), "Input Error");
      rig.program->endSilently();
      stays = box && box->isVisible();
      if (stays) box->reject();
    });
    ProgramRig::chooseFile(*chooser, "missing.qvd");
    EXPECT_FALSE(stays) << opener;
    EXPECT_TRUE(rig.ended) << opener;
  }
}

}  // namespace
}  // namespace qv3::test
