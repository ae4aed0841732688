#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QSignalSpy>

#include "tests/app/programrig.h"

namespace qv3 {
namespace {

using test::ProgramRig;

/// A live meter whose frames come by hand, and a panel whose keys are pressed.
struct SessionInWindow : testing::Test {
  ProgramRig rig;

  void startLive(const char* recording) {
    rig.files.folders = {"/rec"};
    rig.plugIn(1, "3A");
    rig.leaveConfig(0, 1);
    rig.leaveSettings(std::string("[Recording]\r\nAudioEnable=False\r\nSavePath=/rec/\r\n"
                                  "SuffixType=0\r\n") +
                      recording);
    rig.start();
  }
  QAbstractButton* button(const char* name) {
    return rig.window().findChild<QAbstractButton*>(QLatin1String(name));
  }
  bool enabled(const char* name) {
    return QTest::qWaitFor([&] { return button(name)->isEnabled(); });
  }
  void press(const char* name) {
    ASSERT_TRUE(enabled(name)) << name;
    QTest::mouseClick(button(name), Qt::LeftButton);
  }
  /// Frames until something holds; false if it never does.
  bool frames(const std::function<bool()>& until) {
    return QTest::qWaitFor([&] {
      rig.port.feed("P7000\r");
      return until();
    });
  }
  /// An unsaved recording.
  void recordSome() {
    press("cmdRecord");
    ASSERT_TRUE(frames([&] { return recorded() >= 10; }));
    press("cmdStop");
    ASSERT_TRUE(frames([&] { return during(Operation::None); }));
  }
  std::size_t recorded() { return rig.instrument().recorder().records().count(); }
  bool during(Operation operation) { return rig.instrument().operation() == operation; }
  /// An earlier run left a recording of two seconds.
  std::function<LeftBehind()> aTakeIsFound();
  /// The session file that the command line names, with these contents.
  void name(const std::string& contents);
  bool loaded() { return rig.instrument().situation().sessionLoaded; }
};

std::string sessionOf(int records) {
  std::string bytes;
  for (int n = 1; n <= records; ++n) {
    SampleRecord record;
    record.Time = n * 20;
    record.PacketType = 'P';
    const auto encoded = encode(record);
    bytes.append(encoded.begin(), encoded.end());
  }
  return bytes;
}

TEST_F(SessionInWindow, RecordStopSaveAndPlayByTheirButtons) {
  startLive("");
  press("cmdRecord");
  ASSERT_TRUE(frames([&] { return recorded() >= 60; }));
  press("cmdStop");
  ASSERT_TRUE(frames([&] { return during(Operation::None); }));
  press("cmdSave");
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return rig.files.contents.count("/rec/Prefix_001.qvd") != 0; }));
  const std::size_t size = rig.files.contents["/rec/Prefix_001.qvd"].size();
  EXPECT_EQ(size % (50 * kRecordSize), 0U) << "whole seconds";
  press("cmdPlay");
  EXPECT_TRUE(during(Operation::Playing));
  press("cmdStop");
  EXPECT_TRUE(during(Operation::None));
}

TEST_F(SessionInWindow, ClosingAsksAboutARecordingAndNoKeepsItRunning) {
  startLive("");
  press("cmdRecord");
  ASSERT_TRUE(frames([&] { return recorded() >= 10; }));
  rig.window().close();
  rig.press("msgExit", QMessageBox::No);
  EXPECT_TRUE(during(Operation::Recording));
  rig.window().close();
  rig.press("msgExit", QMessageBox::Yes);
  EXPECT_TRUE(QTest::qWaitFor([&] { return rig.ended; }));
  EXPECT_EQ(rig.journals.back().fate, "removed");
}

TEST_F(SessionInWindow, NoInTheMidstOfASearchLeavesAProgramThatCanConnect) {
  startLive("");
  recordSome();
  rig.hasty.during = [this] {
    rig.hasty.during = {};
    rig.window().close();
  };
  rig.trigger("mnuConnectionConnect");
  rig.press("msgExit", QMessageBox::No);
  EXPECT_TRUE(during(Operation::None));
  EXPECT_EQ(rig.status(), "No Meter");
  EXPECT_FALSE(rig.port.isOpen());
  EXPECT_EQ(rig.settings().ComPort, 1);
  rig.trigger("mnuConnectionConnect");
  EXPECT_TRUE(QTest::qWaitFor([&] { return rig.status() == "Input OK"; }));
}

TEST_F(SessionInWindow, ASignalWhileTheExitQuestionStandsSaves) {
  startLive("");
  recordSome();
  rig.window().close();
  ASSERT_TRUE(rig.opens("msgExit"));
  rig.program->endSilently();
  EXPECT_TRUE(QTest::qWaitFor([&] { return rig.ended; }));
  EXPECT_EQ(rig.files.contents.count("/rec/Prefix_001.qvd"), 1U);
}

TEST_F(SessionInWindow, LoadedSettingsReachTheRecordingPanel) {
  startLive("");
  recordSome();
  press("cmdSave");
  ASSERT_TRUE(QTest::qWaitFor([&] { return !rig.instrument().situation().unsaved; }));
  ASSERT_TRUE(enabled("cmdPlay"));
  rig.leaveSettings("[Format]\r\nRecordVisible=False\r\n[Recording]\r\nSavePath=/gone/\r\n");
  rig.trigger("mnuLoadSettings");
  ASSERT_TRUE(rig.opens("dlgLoadSettings"));
  rig.dialog("dlgLoadSettings")->reject();
  EXPECT_FALSE(rig.instrument().situation().sessionLoaded);
  EXPECT_EQ(rig.settings().SavePath, "") << "a folder that is gone is nowhere to record to";
}

TEST_F(SessionInWindow, AutoSaveAtExitWritesFirst) {
  startLive("RecordingMode=3\r\n");
  press("cmdRecord");
  ASSERT_TRUE(frames([&] { return recorded() >= 10; }));
  rig.window().close();
  EXPECT_TRUE(frames([&] { return rig.ended; }));
  EXPECT_EQ(rig.files.contents.count("/rec/Prefix_001.qvd"), 1U);
}

TEST_F(SessionInWindow, HiddenPanelHidesItsMenu) {
  startLive("");
  const int before = rig.window().height();
  rig.trigger("mnuViewRecording");
  EXPECT_TRUE(QTest::qWaitFor([&] { return !rig.item("mnuRecording")->isVisible(); }));
  EXPECT_LT(rig.window().height(), before);
  EXPECT_FALSE(rig.window().transport().isVisible());
}

TEST_F(SessionInWindow, RecordingSetupOpensFromItsMenuAndTheSaveButton) {
  startLive("");
  rig.trigger("mnuRecSettings");
  ASSERT_TRUE(rig.opens("frmRec"));
  rig.dialog("frmRec")->reject();
  press("cmdSave");
  EXPECT_TRUE(rig.opens("frmRec"));
}

std::function<LeftBehind()> SessionInWindow::aTakeIsFound() {
  rig.journals.emplace_back();
  return [this] {
    LeftBehind left;
    FoundTake& take = left.takes.emplace_back();
    take.name = "Prefix_009";
    take.samples = 100;
    take.read = [] {
      Take read;
      for (int n = 1; n <= 100; ++n) {
        SampleRecord record;
        record.Time = n * 20;
        read.records.append(record);
      }
      read.unsaved = true;
      read.loaded = true;
      return read;
    };
    take.journal = std::make_unique<test::FakeJournal>(rig.journals.back());
    return left;
  };
}

TEST_F(SessionInWindow, WhatCannotBeReadIsSaidBeforeTheRestIsOffered) {
  rig.leftBehind = [offer = aTakeIsFound()] {
    LeftBehind left = offer();
    left.unreadable = {"/home/recovery/odd.journal"};
    return left;
  };
  startLive("");
  ASSERT_TRUE(rig.opens("msgUnreadable"));
  EXPECT_TRUE(rig.dialog<QMessageBox>("msgUnreadable")->text().contains("recovery/odd.journal"));
  rig.press("msgUnreadable", QMessageBox::Ok);
  EXPECT_TRUE(rig.opens("msgRecover"));
}

TEST_F(SessionInWindow, WhatAnEarlierRunLeftIsOffered) {
  for (const auto& [answer, fate] : {std::pair{0, "open"}, {1, "removed"}, {2, "open"}}) {
    rig.leftBehind = aTakeIsFound();
    startLive("");
    ASSERT_TRUE(rig.opens("msgRecover"));
    rig.dialog<QMessageBox>("msgRecover")->buttons().at(answer)->click();
    EXPECT_EQ(rig.journals.back().fate, fate);
    EXPECT_EQ(rig.instrument().situation().unsaved, answer == 0);
  }
}

void SessionInWindow::name(const std::string& contents) {
  rig.sessionFile = rig.file("named.qvd");
  ASSERT_TRUE(rig.store.replace(rig.sessionFile, contents).ok());
  rig.files.contents[rig.sessionFile] = contents;
  rig.files.contents["/data/dummy.mp3"] = "frame";
}

TEST_F(SessionInWindow, ASessionOnTheCommandLineIsLoadedOnceTheMeterWasLookedFor) {
  name(sessionOf(100));
  startLive("");
  EXPECT_TRUE(QTest::qWaitFor([this] { return loaded(); }));
  EXPECT_EQ(rig.instrument().programState(), 1);
  EXPECT_EQ(rig.settings().LoadPath, rig.home.path().toStdString() + '/');

  rig.port.nodes.clear();
  rig.begin();
  ASSERT_TRUE(rig.opens("msgNoHardware"));
  EXPECT_FALSE(loaded());
  rig.press("msgNoHardware", QMessageBox::Cancel);
  EXPECT_TRUE(QTest::qWaitFor([this] { return loaded(); }));
}

TEST_F(SessionInWindow, AFileOnTheCommandLineThatIsNoSessionIsSaid) {
  name(std::string(200, 'x'));
  startLive("");
  rig.press("msgIncompatible", QMessageBox::Ok);
  EXPECT_FALSE(loaded());
}

TEST_F(SessionInWindow, ARecoveredRecordingGoesBeforeTheSessionOnTheCommandLine) {
  for (const int answer : {0, 2}) {
    name(sessionOf(300));
    rig.leftBehind = aTakeIsFound();
    startLive("");
    ASSERT_TRUE(rig.opens("msgRecover"));
    EXPECT_FALSE(loaded());
    rig.dialog<QMessageBox>("msgRecover")->buttons().at(answer)->click();
    if (answer == 0) rig.press("msgNotOpened", QMessageBox::Ok);
    EXPECT_TRUE(QTest::qWaitFor([this] { return loaded(); }));
    EXPECT_EQ(rig.instrument().situation().unsaved, answer == 0);
  }
}

}  // namespace
}  // namespace qv3
