#include <gtest/gtest.h>

#include "tests/session/sessionrig.h"

namespace qv3 {
namespace {

struct SessionExit : test::SessionRig {
  std::optional<bool> went;
  void exit() {
    session.prepareExit([this](bool go) { went = go; });
  }
};

TEST_F(SessionExit, NothingAtStakeAsksNothing) {
  exit();
  EXPECT_EQ(went, true);
}

TEST_F(SessionExit, AnUnsavedRecordingIsAskedAbout) {
  recordSeconds(1);
  exit();
  EXPECT_EQ(view.asked.back(), "Recording not saved, Exit?");
  EXPECT_FALSE(went);
  view.reply(false);
  EXPECT_EQ(went, false);
  exit();
  view.reply(true);
  EXPECT_EQ(went, true);
  EXPECT_EQ(journals.back().fate, "removed");
}

TEST_F(SessionExit, WithoutThePromptItGoesToTheTrash) {
  recordSeconds(1);
  settings.RecPromptEnable = false;
  exit();
  EXPECT_EQ(went, true);
  EXPECT_EQ(journals.back().fate, "trash");
}

TEST_F(SessionExit, AnAnswerThatLedToNothingDeletesNothingLater) {
  recordSeconds(1);
  session.cmdLoad();
  view.reply(true);  // and then the file dialog was cancelled
  settings.RecPromptEnable = false;
  exit();
  EXPECT_EQ(journals.back().fate, "trash");
}

TEST_F(SessionExit, ARunningRecordingGoesOnWhileTheQuestionStands) {
  session.cmdRecord();
  frames(80);
  exit();
  frames(10);
  EXPECT_EQ(instrument.operation(), Operation::Recording);
  view.reply(true);
  EXPECT_EQ(went, true);
  EXPECT_EQ(instrument.programState(), 1);
}

TEST_F(SessionExit, WhatEndsByItselfMeanwhileIsNoAnswer) {
  struct Row {
    const char* what;
    std::function<void()> begin;
    std::function<void()> end;
  };
  const Row rows[] = {
      {"the line goes", [this] { session.cmdRecord(), frames(80); },
       [this] { instrument.portLost(now); }},
      {"playback comes to its end", [this] { recordSeconds(1), session.cmdPlay(now); },
       [this] { session.cmdStop(now), session.poll(now); }},
      {"the sound completes its second",
       [this] {
         settings.AudioEnable = true;
         session.cmdRecord();
         media.position = kSoundBytesPerSecond;
         frames(30);
       },
       [this] {
         instrument.portLost(now);
         media.position += kSoundBytesPerSecond;
         frames(2);
       }},
  };
  for (const Row& row : rows) {
    settings.RecPromptEnable = false;
    row.begin();
    settings.RecPromptEnable = true;
    exit();
    row.end();
    EXPECT_EQ(instrument.operation(), Operation::None) << row.what;
    EXPECT_FALSE(went) << row.what;
    view.reply(false);
    EXPECT_EQ(went, false) << row.what;
    EXPECT_TRUE(session.take().unsaved) << row.what;
    went.reset();
  }
}

TEST_F(SessionExit, YesCutsShortAStopThatBeganMeanwhile) {
  settings.AudioEnable = true;
  session.cmdRecord();
  media.position = kSoundBytesPerSecond;
  frames(30);
  exit();
  session.cmdStop(now);
  ASSERT_EQ(instrument.operation(), Operation::Stopping);
  view.reply(true);
  EXPECT_EQ(went, true);
  EXPECT_EQ(journals.back().fate, "removed");
  frames(3);
  EXPECT_EQ(instrument.programState(), 1);
}

TEST_F(SessionExit, AnAutoSaveThatFailsAsksWhereToAndCancelCancelsTheExit) {
  settings.RecordingMode = 3;
  for (const bool cancelled : {true, false}) {
    settings.RecPromptEnable = false;
    session.cmdRecord();
    settings.RecPromptEnable = true;
    frames(80);
    const auto room = std::exchange(files.room, 300);
    exit();
    frames(60);
    polls();
    ASSERT_FALSE(view.told.empty());
    EXPECT_NE(view.told.back().find("The recording could not be saved: "), std::string::npos);
    EXPECT_EQ(view.dialog.title, "Save Recording As");
    EXPECT_FALSE(went);
    files.room = room;
    view.chosen(cancelled ? "" : "/rec/elsewhere.qvd");
    polls();
    EXPECT_EQ(went, !cancelled);
    EXPECT_EQ(session.take().unsaved, cancelled);
    went.reset();
  }
  EXPECT_TRUE(files.contents.count("/rec/elsewhere.qvd"));
}

TEST_F(SessionExit, AutoSaveStopsAndSavesFirst) {
  settings.RecordingMode = 3;
  session.cmdRecord();
  frames(80);
  exit();
  EXPECT_TRUE(view.asked.empty());
  EXPECT_FALSE(went) << "the second and the file have to be whole";
  frames(60);
  polls();
  EXPECT_EQ(went, true);
  EXPECT_TRUE(files.contents.count("/rec/Prefix_17-01-05__14.03.27.qvd"));
}

TEST_F(SessionExit, ALeadInIsGivenUpWithoutAWord) {
  session.cmdRecord();
  frames(10);
  exit();
  EXPECT_TRUE(view.asked.empty());
  EXPECT_EQ(went, true);
}

TEST_F(SessionExit, ASaveUnderWayFinishesFirst) {
  recordSeconds(1);
  session.cmdSave();
  exit();
  EXPECT_FALSE(went);
  polls();
  EXPECT_EQ(went, true);
  EXPECT_TRUE(view.asked.empty());
}

TEST_F(SessionExit, PlaybackEndsSoThatTheLiveValuesStand) {
  putSession("/rec/s", 100);
  session.open("/rec/s.qvd");
  polls();
  session.cmdPlay(now);
  exit();
  EXPECT_EQ(went, true);
  EXPECT_EQ(instrument.programState(), 1);
}

TEST_F(SessionExit, ASignalGivesUpALeadIn) {
  session.cmdRecord();
  frames(10);
  bool gone = false;
  session.prepareSilentExit([&gone] { gone = true; });
  EXPECT_TRUE(gone);
  EXPECT_TRUE(journals.empty());
}

TEST_F(SessionExit, ASignalSavesToThePreparedNameOrTheStateFolder) {
  for (const bool full : {false, true}) {
    settings.SuffixType = 0;
    settings.SuffixNum = full ? 2 : 1;
    recordSeconds(1);
    if (full) files.folders.erase("/rec");
    bool gone = false;
    session.prepareSilentExit([&gone] { gone = true; });
    polls();
    EXPECT_TRUE(gone);
    EXPECT_TRUE(files.contents.count(full ? "/state/Prefix_002.qvd" : "/rec/Prefix_001.qvd"));
    EXPECT_TRUE(view.asked.empty());
  }
}

}  // namespace
}  // namespace qv3
