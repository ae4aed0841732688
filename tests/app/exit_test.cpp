#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/pumpedwait.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

TEST(Exit, WritesTheConfigAndTheRecordingSection) {
  ProgramRig rig;
  rig.leaveConfig(0, 0, 17, "750\n1500\n9000\n0\n");
  rig.start();
  rig.trigger("mnuSettingsNeedleWidth_8");
  rig.trigger("mnuExit");
  EXPECT_TRUE(rig.ended);
  EXPECT_EQ(rig.contents(rig.configPath()),
            '"' + rig.iniPath() + "\"\r\n0\r\n0\r\n17\r\n750\r\n1500\r\n9000\r\n0\r\n");
  EXPECT_NE(rig.contents(rig.iniPath()).find("SavePrefix=Prefix_"), std::string::npos);
  EXPECT_EQ(rig.contents(rig.iniPath()).find("Needle_Width"), std::string::npos);
  // Once it has begun, everything is refused.
  EXPECT_FALSE(rig.item("mnuExit")->isEnabled());
  EXPECT_FALSE(rig.item("mnuSaveSettings")->isEnabled());
}

struct AutoSave {
  int mode;
  bool changed;
  bool silently;
  std::optional<QMessageBox::StandardButton> answer;
  bool saved;
};

class AutoSaveAtExit : public testing::TestWithParam<AutoSave> {};

TEST_P(AutoSaveAtExit, DecidesAboutTheDisplaySections) {
  const AutoSave& row = GetParam();
  ProgramRig rig;
  rig.leaveSettings("[Format]\r\nNeedle_Width=3\r\n");
  rig.leaveConfig(row.mode, 0);
  rig.start();
  if (row.changed) rig.trigger("mnuSettingsNeedleWidth_8");
  if (row.silently) {
    rig.program->endSilently();
  } else {
    rig.window().close();
  }
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
  const std::string wanted = row.saved ? "Needle_Width=8" : "Needle_Width=3";
  EXPECT_NE(rig.contents(rig.iniPath()).find(wanted), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Modes, AutoSaveAtExit,
                         testing::Values(AutoSave{0, true, false, {}, false},
                                         AutoSave{1, true, false, {}, true},
                                         AutoSave{1, true, true, {}, true},
                                         AutoSave{2, false, false, {}, false},
                                         AutoSave{2, true, false, QMessageBox::Yes, true},
                                         AutoSave{2, true, false, QMessageBox::No, false},
                                         AutoSave{2, true, true, {}, false}));

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
  EXPECT_NE(rig.contents(rig.iniPath()).find("[Recording]"), std::string::npos);
}

/// Real waits; something happens in the midst of one of them.
class InterruptedWait final : public Waiter {
 public:
  bool TDelay(int ticks) override { return wait(ticks * kTickSeconds); }
  bool wait(double seconds) override {
    if (--m_left == 0) QTimer::singleShot(10, &m_context, m_what);
    return m_real.wait(seconds);
  }

  void inWait(int number, std::function<void()> what) {
    m_left = number;
    m_what = std::move(what);
  }
  void giveUp() { m_real.giveUp(); }

 private:
  PumpedWait m_real{timeOfDay};
  int m_left = 0;
  std::function<void()> m_what;
  QObject m_context;
};

/// A port that opens and never answers. Events go on once before the window is shown; a probe has
/// four waits.
class ProbedExit : public testing::Test {
 protected:
  ProbedExit() {
    rig.plugIn(3, "");
    rig.leaveConfig(0, 3);
    rig.waiter = &wait;
    rig.giveUp = [this] { wait.giveUp(); };
  }

  /// Within one of the next waits.
  void interrupt(int number, std::function<void()> end) {
    wait.inWait(number, [this, end = std::move(end)] {
      EXPECT_EQ(rig.status(), "Checking Port 3 for Hardware");
      since.start();
      end();
    });
  }

  void expectEndWithin1s() {
    EXPECT_TRUE(QTest::qWaitFor([this] { return rig.ended; }));
    EXPECT_LT(since.elapsed(), 1000);
    EXPECT_FALSE(rig.port.isOpen());
    EXPECT_NE(rig.contents(rig.configPath()).find(".ini\"\r\n0\r\n3\r\n"), std::string::npos);
    EXPECT_NE(rig.contents(rig.iniPath()).find("[Recording]"), std::string::npos);
  }

  InterruptedWait wait;
  ProgramRig rig;
  QElapsedTimer since;
};

class ExitWhileProbing : public ProbedExit, public testing::WithParamInterface<int> {};

TEST_P(ExitWhileProbing, AtStart) {
  interrupt(GetParam(), [this] { rig.window().close(); });
  rig.begin();
  expectEndWithin1s();
}

TEST_P(ExitWhileProbing, AtStartBySignal) {
  interrupt(GetParam(), [this] {
    rig.program->endSilently();
    rig.program->endSilently();
  });
  rig.begin();
  expectEndWithin1s();
}

INSTANTIATE_TEST_SUITE_P(Waits, ExitWhileProbing, testing::Range(1, 6));

TEST_F(ProbedExit, OfConnect) {
  rig.waiter = nullptr;
  rig.plugIn(3, "3A");
  rig.begin();
  ASSERT_TRUE(QTest::qWaitFor([this] { return rig.up(); }));
  rig.hasty.during = [this] {
    if (since.isValid()) return;
    since.start();
    QTimer::singleShot(0, &rig.window(), [this] { rig.trigger("mnuExit"); });
  };
  rig.trigger("mnuConnectionConnect");
  expectEndWithin1s();
}

TEST_F(ProbedExit, AtTheQuestionWaitsForTheAnswerButNotForASignal) {
  rig.waiter = nullptr;
  rig.begin();
  ASSERT_TRUE(rig.opens("msgNoHardware"));
  rig.window().close();
  EXPECT_FALSE(rig.ended);
  ASSERT_TRUE(rig.opens("msgNoHardware"));
  since.start();
  rig.program->endSilently();
  expectEndWithin1s();
}

TEST(Exit, InAnyWaitOfAStartLeavesWhatTheLastRunLeft) {
  for (int wanted = 1; wanted <= 3; ++wanted) {
    ProgramRig rig;
    rig.leaveConfig(0, 0, 17, "750\n1500\n9000\n0\n");
    int waits = 0;
    rig.hasty.during = [&] {
      if (++waits == wanted) rig.program->endSilently();
    };
    rig.begin();
    ASSERT_TRUE(QTest::qWaitFor([&] { return rig.ended; })) << wanted;
    EXPECT_EQ(rig.contents(rig.configPath()),
              '"' + rig.iniPath() + "\"\r\n0\r\n0\r\n17\r\n750\r\n1500\r\n9000\r\n0\r\n")
        << wanted;
  }
}

TEST(Exit, AnOpenDialogHasToBeAnsweredUnlessASignalEndsTheProgram) {
  for (const char* opener : {"mnuViewMeter", "mnuSetColDial", "mnuSaveSettingsAs"}) {
    ProgramRig rig;
    rig.start();
    rig.trigger(opener);
    ASSERT_NE(QApplication::activeModalWidget(), nullptr) << opener;
    rig.window().close();
    EXPECT_FALSE(rig.ended) << opener;
    rig.program->endSilently();
    EXPECT_TRUE(rig.ended) << opener;
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << opener;
  }
}

}  // namespace
}  // namespace qv3::test
