#include <gtest/gtest.h>

#include <algorithm>

#include "tests/session/sessionrig.h"

namespace qv3 {
namespace {

struct SessionTest : testing::Test, test::SessionRig {
  void load(const std::string& base, int records,
            std::optional<SessionStart> start = SessionStart{3600, 6210}) {
    putSession(base, records, false, start);
    session.open(base + ".qvd");
    polls();
  }
  /// A save that ended leaves nothing unsaved.
  void save() {
    session.cmdSave();
    polls();
    EXPECT_FALSE(session.take().unsaved);
  }
};

TEST_F(SessionTest, AutoNameWaitsForOnePressOfSave) {
  settings.SuffixType = 0;
  settings.SuffixNum = 7;
  recordSeconds(4);
  EXPECT_TRUE(session.take().unsaved);
  EXPECT_EQ(session.transport().cmdSave.caption, "Save");
  EXPECT_EQ(view.loadedTip, "/rec/Prefix_007");
  EXPECT_EQ(view.totalTime, 4);
  EXPECT_GT(journals.back().bytes, 200 * kRecordSize) << "every sample";
  EXPECT_LT(journals.back().bytes, 200 * kRecordSize + 400) << "header and records, nothing twice";
  session.setRange(250, 750);
  save();
  EXPECT_EQ(files.contents.at("/rec/Prefix_007.qvd").size(), 200 * kRecordSize);
  EXPECT_EQ(view.loadedTip, "/rec/Prefix_007.qvd");
  EXPECT_EQ(settings.SuffixNum, 8);
  EXPECT_EQ(settings.LoadPath, "/rec/");
  EXPECT_EQ(journals.back().fate, "removed");
  EXPECT_EQ(view.bar.face, BarFace::Range);
  EXPECT_EQ(view.bar.range, (BarRange{250, 750})) << "a range is still there after a save";
  EXPECT_EQ(session.transport().cmdSave.caption, "Settings");
  session.cmdSave();
  EXPECT_EQ(view.setups, 1);
}

TEST_F(SessionTest, ManualAsksForTheNameAndBeforeReplacing) {
  settings.RecordingMode = 1;
  putSession("/rec/old", 10, true);
  recordSeconds(1);
  session.cmdSave();
  EXPECT_EQ(view.dialog.title, "Save Recording As");
  EXPECT_EQ(view.dialog.fileName, "Prefix_");
  view.chosen("/rec/old.qvd");
  ASSERT_EQ(view.asked.size(), 1U);
  EXPECT_NE(view.asked[0].find("/rec/old.wav"), std::string::npos) << "named, as it goes too";
  view.reply(true);
  polls();
  EXPECT_EQ(files.contents.at("/rec/old.qvd").size(), 50 * kRecordSize);
  EXPECT_TRUE(files.trash.count("/rec/old.wav"));
}

TEST_F(SessionTest, CaptureWritesNothingAndTheSaveButtonFollowsTheModeOfTheMoment) {
  settings.RecordingMode = 4;
  settings.SuffixType = 0;
  recordSeconds(1);
  polls();
  EXPECT_EQ(view.loadedFile, "Buffer");
  EXPECT_EQ(session.transport().cmdSave.caption, "Settings");
  session.cmdSave();
  EXPECT_EQ(view.setups, 1);
  settings.RecordingMode = 1;
  EXPECT_EQ(session.transport().cmdSave.caption, "Save As");
  session.cmdSave();
  EXPECT_EQ(view.dialog.title, "Save Recording As");
  settings.RecordingMode = 2;
  EXPECT_EQ(session.transport().cmdSave.caption, "Save");
  session.saveFileAs();
  EXPECT_EQ(view.dialog.title, "Save File As");
  view.chosen("/rec/kept");
  polls();
  EXPECT_TRUE(files.contents.count("/rec/kept.qvd"));
  EXPECT_EQ(settings.SuffixNum, 1);
}

TEST_F(SessionTest, AutoSaveWritesAtOnceAndAFailedWriteSaysSoAndKeepsTheRecording) {
  settings.RecordingMode = 3;
  recordSeconds(1);
  polls();
  const std::string name = "Prefix_17-01-05__14.03.27";
  EXPECT_TRUE(files.contents.count("/rec/" + name + ".qvd"));
  EXPECT_EQ(view.loadedFile + view.loadedTip, name + "/rec/" + name);
  EXPECT_FALSE(session.take().unsaved);
  files.room = 300;
  recordSeconds(1);
  polls();
  ASSERT_EQ(view.told.size(), 1U);
  EXPECT_NE(view.told[0].find("The recording could not be saved: "), std::string::npos);
  EXPECT_TRUE(session.take().unsaved);
  EXPECT_EQ(view.dialog.title, "Save Recording As");
  EXPECT_EQ(view.dialog.fileName, name);
  EXPECT_EQ(session.transport().cmdSave.caption, "Save As") << "from now on as in mode 1";
  EXPECT_EQ(journals.back().fate, "finished");
}

TEST_F(SessionTest, ARecoveredTakeProposesItsOwnNameAndFolder) {
  Take found;
  found.records.append({});
  found.unsaved = found.loaded = true;
  found.folder = "/elsewhere/";
  found.name = "Prefix_007";
  session.recover(std::move(found), nullptr);
  session.cmdSave();
  EXPECT_EQ(view.dialog.folder + view.dialog.fileName, "/elsewhere/Prefix_007");
}

TEST_F(SessionTest, RecordOverAnUnsavedOneAsksAndOnlyAnAskedDiscardDeletes) {
  recordSeconds(1);
  session.cmdRecord();
  EXPECT_EQ(view.asked.back(), "Previous recording not saved, Continue?");
  view.reply(false);
  EXPECT_EQ(instrument.programState(), 1);
  EXPECT_EQ(journals.back().fate, "finished");
  session.cmdRecord();
  view.reply(true);
  EXPECT_EQ(journals.front().fate, "removed");
  frames(150);
  session.cmdStop(now);
  frames(60);
  settings.RecPromptEnable = false;
  session.cmdRecord();
  EXPECT_EQ(instrument.operation(), Operation::LeadIn);
  EXPECT_EQ(journals.back().fate, "trash") << "never deleted without a word";
}

TEST_F(SessionTest, AnAnswerCountsOnlyIfTheCommandStillActs) {
  recordSeconds(1);
  const std::function<void()> commands[] = {[this] { session.cmdRecord(); },
                                            [this] { session.open("/rec/s.qvd"); },
                                            [this] { session.setAudio(true); }};
  for (const auto& command : commands) {
    command();
    instrument.setOperation(Operation::Probing);
    view.reply(true);
    EXPECT_TRUE(session.take().unsaved);
    EXPECT_FALSE(settings.AudioEnable);
    EXPECT_EQ(journals.back().fate, "finished");
    instrument.connected(6, now);
  }
}

TEST_F(SessionTest, ATakeKeepsItsAudioModeAndIsKeptByAHiddenPanelWhileUnsaved) {
  settings.SuffixType = 0;
  recordSeconds(1);
  settings.AudioEnable = true;
  session.cmdPlay(now);
  EXPECT_EQ(media.commands.back(), "play WavFile");
  session.cmdStop(now);
  session.panelHidden();
  EXPECT_TRUE(session.take().unsaved);
  EXPECT_EQ(media.commands.back(), "close WavFile");
  save();
  EXPECT_TRUE(files.contents.count("/rec/Prefix_001.qvd"));
  EXPECT_FALSE(files.contents.count("/rec/Prefix_001.wav"));
  session.panelHidden();
  EXPECT_FALSE(session.take().loaded);
  EXPECT_EQ(view.loadedFile, "No File Loaded");
  session.listNumbered();
  EXPECT_TRUE(view.numbers.empty()) << "beside nothing there is nothing";
  session.open("/rec/Prefix_001.qvd");
  EXPECT_NE(view.told.back().find("The audio file is missing."), std::string::npos)
      << "what is loaded has to have the present mode";
}

TEST_F(SessionTest, NothingOfAPlaybackIsLeftToRunAfterItsStop) {
  load("/rec/s", 500);
  session.cmdPlay(now);
  session.poll(now);
  session.skip(true, now);
  session.cmdStop(now);
  session.cmdStop(now);
  const auto said = media.commands.size();
  wait(std::chrono::milliseconds{600});
  polls();
  EXPECT_EQ(media.commands.size(), said) << "the skip has nothing to resume";
  session.cmdPlay(now);
  EXPECT_EQ(instrument.operation(), Operation::Playing);
  EXPECT_EQ(media.commands.back(), "play WavFile");
}

TEST_F(SessionTest, SoundThatCannotBeWrittenEndsTheRecordingWithItsMessage) {
  settings.AudioEnable = true;
  session.cmdRecord();
  media.position = kSoundBytesPerSecond;
  frames(100);
  ASSERT_EQ(instrument.operation(), Operation::Recording);
  spool.broken = "No space left on device";
  frames(1);
  media.position = 3 * kSoundBytesPerSecond;
  frames(2);
  EXPECT_EQ(instrument.operation(), Operation::None);
  EXPECT_TRUE(session.take().unsaved);
  ASSERT_EQ(view.told.size(), 1U);
  EXPECT_NE(view.told[0].find(spool.broken), std::string::npos);

  settings.RecPromptEnable = false;
  disk.left = DiskRoom{1000, 1};
  session.cmdRecord();
  EXPECT_EQ(instrument.programState(), 1) << "no room, no recording";
  EXPECT_EQ(view.told.size(), 2U);
}

TEST_F(SessionTest, PlaysWhatItLoadedWithTheClockOfItsTime) {
  using Start = std::optional<SessionStart>;
  for (const Start& start : {Start(SessionStart{3600, 6210}), Start()}) {
    load("/rec/long", 50000, start);
    EXPECT_EQ(view.loadedFile, "long.qvd");
    EXPECT_EQ(view.totalTime, 1000);
    EXPECT_EQ(session.take().start.has_value(), start.has_value());
    session.cmdPlay(now);
    media.position = 20;
    session.poll(now);
    EXPECT_EQ(instrument.programState(), 2);
    ASSERT_EQ(view.clock.has_value(), start.has_value());
    EXPECT_EQ(start ? view.clock->secondsOfDay + view.clock->day : 9810, 3600 + 6210);
    EXPECT_EQ(view.clockHidden, !start) << "one that tells no time";
    session.cmdStop(now);
    EXPECT_FALSE(view.clock || view.clockHidden);
    EXPECT_EQ(instrument.programState(), 1);
  }
}

TEST_F(SessionTest, ASlowDiskShowsItsProgressWhileTheNeedleGoesOnAndHoldsNoExit) {
  files.arrived = 0;
  load("/rec/long", 50000);
  EXPECT_EQ(view.loadedFile, "Loading......");
  const std::size_t needles = display.needles.size();
  frames(50);
  EXPECT_EQ(display.needles.size(), needles + 50);
  EXPECT_EQ(instrument.operation(), Operation::Loading);
  EXPECT_EQ(view.bar.face, BarFace::Work);
  EXPECT_EQ(view.bar.place, 0);
  files.arrived = 500'000;
  polls();
  EXPECT_EQ(view.bar.place, 500);
  files.arrived = 1'000'000;
  polls();
  EXPECT_EQ(view.loadedFile, "long.qvd");
  EXPECT_EQ(session.take().records.count(), 50000U);

  files.arrived = 1000;
  session.open("/rec/long.qvd");
  bool gone = false;
  session.prepareExit([&gone](bool go) { gone = go; });
  EXPECT_TRUE(gone);
  EXPECT_FALSE(session.take().loaded);
}

TEST_F(SessionTest, ALongSaveShowsItsProgress) {
  load("/rec/long", 50000);
  session.saveFileAs();
  view.chosen("/rec/copy.qvd");
  std::vector<double> places;
  for (int n = 0; n < 100 && instrument.operation() == Operation::Saving; ++n) {
    session.poll(now);
    if (view.bar.face == BarFace::Work) places.push_back(view.bar.place.value_or(-1));
  }
  EXPECT_EQ(files.contents["/rec/copy.qvd"], files.contents["/rec/long.qvd"]);
  ASSERT_GE(places.size(), 3U);
  EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
  EXPECT_LT(places.front(), 500);
  EXPECT_GT(places.back(), 500);
}

TEST_F(SessionTest, WhatCannotBeLoadedIsSaidAndLeavesNothing) {
  putSession("/rec/s", 10);
  const auto refused = [this](const std::string& message) {
    session.open("/rec/s.qvd");
    polls();
    ASSERT_FALSE(view.told.empty()) << message;
    EXPECT_EQ(view.told.back().substr(0, message.size()), message);
    EXPECT_FALSE(session.take().loaded) << message;
    EXPECT_EQ(view.loadedFile, "No File Loaded") << message;
  };
  settings.AudioEnable = true;
  refused("The audio file is missing.");
  files.contents["/rec/s.qvd"] = std::string(500, 'x');
  files.contents["/rec/s.mp3"] = "x";
  refused("This file is corrupt");
  settings.AudioEnable = false;
  files.contents.erase("/data/dummy.mp3");
  refused("The Dummy.mp3 file is missing.");
}

TEST_F(SessionTest, NumberedFilesBesideTheOneLoaded) {
  for (const char* name : {"Take_001", "Take_123", "Other_002"}) {
    putSession(std::string("/rec/") + name, 10);
  }
  load("/rec/Take_007", 10);
  session.listNumbered();
  EXPECT_EQ(view.numbers, (std::vector<std::string>{"001", "007", "123"}));
  EXPECT_EQ(view.current, 1);
  session.loadNumbered("123");
  polls();
  EXPECT_EQ(view.loadedFile, "Take_123.qvd");
}

}  // namespace
}  // namespace qv3
