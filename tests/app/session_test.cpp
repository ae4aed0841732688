#include <gtest/gtest.h>

#include <QDir>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

/// A live meter, and a panel whose keys are pressed.
struct SessionInWindow : testing::Test {
  ProgramRig rig;

  void startLive(const std::string& recording = {}) {
    rig.files.folders = {"/rec"};
    rig.startLive("[Recording]\r\nAudioEnable=False\r\nSavePath=/rec/\r\nSuffixType=0\r\n" +
                  recording);
  }
  /// An unsaved recording.
  void recordSome() {
    rig.click("cmdRecord");
    rig.frames(80);
    ASSERT_EQ(rig.operation(), Operation::Recording);
    rig.click("cmdStop");
    rig.frames(60);
    ASSERT_EQ(rig.operation(), Operation::None);
  }
  /// Or will be with the next polls.
  bool loaded() {
    rig.pass(std::chrono::milliseconds{100});
    return rig.instrument().situation().sessionLoaded;
  }
  bool saved() const { return rig.files.contents.count("/rec/Prefix_001.qvd") != 0; }

  /// An earlier run left a recording of two seconds.
  LeftBehind foundTake() {
    LeftBehind left;
    FoundTake& take = left.takes.emplace_back();
    take.name = "Prefix_009";
    take.samples = 100;
    take.read = [] {
      Take read;
      for (int n = 1; n <= 100; ++n) read.records.append(SampleRecord{.Time = n * 20});
      read.unsaved = true;
      read.loaded = true;
      return read;
    };
    take.journal = std::make_unique<FakeJournal>(rig.journals.emplace_back());
    return left;
  }
  /// "Recover", "Discard", "Later".
  void answerOffer(int answer) {
    ASSERT_TRUE(rig.opens("msgRecover"));
    rig.dialog<QMessageBox>("msgRecover")->buttons().at(answer)->click();
    rig.turnOver();
  }
};

TEST_F(SessionInWindow, NoInTheMidstOfASearchLeavesAProgramThatCanConnect) {
  startLive();
  recordSome();
  rig.waiter.during = [this] {
    rig.waiter.during = {};
    rig.window().close();
  };
  rig.trigger("mnuConnectionConnect");
  rig.press("msgExit", QMessageBox::No);
  EXPECT_EQ(rig.operation(), Operation::None);
  EXPECT_EQ(rig.status(), "No Meter");
  EXPECT_FALSE(rig.port.isOpen());
  EXPECT_EQ(rig.settings().ComPort, 1);
  rig.trigger("mnuConnectionConnect");
  EXPECT_EQ(rig.status(), "Input OK");
  rig.window().close();
  rig.press("msgExit", QMessageBox::Yes);
  EXPECT_TRUE(rig.ended);
  EXPECT_EQ(rig.journals.back().fate, "removed");
}

/// The hand that is at the space bar all the time must not throw a recording away.
TEST_F(SessionInWindow, AKeyThatMeantTheNeedleKeepsTheRecording) {
  startLive();
  recordSome();
  for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return}) {
    rig.click("cmdRecord");
    ASSERT_TRUE(rig.opens("msgNotSaved"));
    QTest::keyClick(rig.dialog("msgNotSaved")->focusWidget(), key);
    EXPECT_EQ(rig.dialog("msgNotSaved"), nullptr) << key;
    EXPECT_EQ(rig.operation(), Operation::None) << key;
    EXPECT_TRUE(rig.instrument().situation().unsaved) << key;
  }
}

TEST_F(SessionInWindow, LoadedSettingsReachTheRecordingPanel) {
  startLive();
  recordSome();
  rig.click("cmdSave");
  rig.pass(std::chrono::seconds{1});
  ASSERT_TRUE(saved() && loaded());
  rig.leaveSettings("[Format]\r\nRecordVisible=False\r\n[Recording]\r\nSavePath=/gone/\r\n");
  rig.trigger("mnuLoadSettings");
  ASSERT_TRUE(rig.opens("dlgLoadSettings"));
  rig.dialog("dlgLoadSettings")->reject();
  EXPECT_FALSE(loaded());
  EXPECT_EQ(rig.settings().SavePath, "") << "a folder that is gone is nowhere to record to";
}

TEST_F(SessionInWindow, LoadOpensInTheFirstFolderThatIsThere) {
  QDir home(rig.home.path());
  const char* const folders[] = {"load", "save", "samples"};
  for (const char* name : folders) ASSERT_TRUE(home.mkdir(name));
  rig.files.folders = {rig.file("save")};
  rig.startLive("[Recording]\r\nSavePath=" + rig.file("save/") +
                "\r\nLoadPath=" + rig.file("load/") + "\r\n");
  for (const char* name : folders) {
    rig.click("cmdLoad");
    auto* chooser = rig.dialog<QFileDialog>("dlgLoad");
    ASSERT_NE(chooser, nullptr) << name;
    EXPECT_EQ(chooser->directory().dirName(), name);
    chooser->reject();
    ASSERT_TRUE(home.rmdir(name));
  }
}

TEST_F(SessionInWindow, HiddenPanelHidesItsMenu) {
  startLive();
  const int before = rig.window().height();
  rig.trigger("mnuViewRecording");
  EXPECT_LT(rig.window().height(), before);
  for (const bool restarted : {false, true}) {
    if (restarted) rig.startWith("[Format]\r\nRecordVisible=False\r\n");
    EXPECT_FALSE(rig.item("mnuRecording")->isVisible()) << restarted;
    EXPECT_FALSE(rig.item("mnuViewRecording")->isChecked()) << restarted;
    EXPECT_FALSE(rig.window().transport().isVisible()) << restarted;
  }
}

/// With a session on the command line and without.
TEST_F(SessionInWindow, WhatAnEarlierRunLeftIsOfferedAndGoesBeforeTheSessionNamed) {
  const std::string named = rig.leaveSession("named.qvd", 300);
  rig.leftBehind = [this] { return foundTake(); };
  for (const auto& [answer, fate] : {std::pair{0, "open"}, {1, "removed"}, {2, "open"}}) {
    for (const bool opens : {false, true}) {
      SCOPED_TRACE(testing::Message() << answer << opens);
      rig.sessionFile = opens ? named : "";
      startLive();
      EXPECT_FALSE(loaded());
      answerOffer(answer);
      EXPECT_EQ(rig.journals.back().fate, fate);
      if (opens && answer == 0) rig.press("msgNotOpened", QMessageBox::Ok);
      EXPECT_EQ(loaded(), opens || answer == 0);
      EXPECT_EQ(rig.instrument().situation().unsaved, answer == 0);
    }
  }
}

TEST_F(SessionInWindow, ASessionOnTheCommandLineIsLoadedOnceTheMeterWasLookedFor) {
  rig.sessionFile = rig.leaveSession("named.qvd", 100);
  startLive();
  EXPECT_TRUE(loaded());
  EXPECT_EQ(rig.instrument().programState(), 1);
  EXPECT_EQ(rig.settings().LoadPath, rig.home.path().toStdString() + '/');

  rig.port.nodes.clear();
  rig.begin();
  ASSERT_TRUE(rig.opens("msgNoHardware"));
  EXPECT_FALSE(loaded());
  rig.press("msgNoHardware", QMessageBox::Cancel);
  EXPECT_TRUE(loaded());

  rig.leaveFile(rig.sessionFile, std::string(200, 'x'));
  rig.begin();
  rig.press("msgNoHardware", QMessageBox::Cancel);
  EXPECT_FALSE(loaded());
  rig.press("msgIncompatible", QMessageBox::Ok);
}

}  // namespace
}  // namespace qv3::test
