#include <gtest/gtest.h>

#include <algorithm>

#include "recording/testsignal.h"
#include "tests/session/sessionrig.h"

namespace qv3 {
namespace {

struct TestModeTest : test::SessionRig {
  bool testing() { return instrument.operation() == Operation::Testing; }
  void control() { session.testControl(now); }

  void playTo(std::int64_t milliseconds, std::int64_t step = 2) {
    for (; media.position <= milliseconds; media.position += step) session.poll(now);
  }
  std::vector<std::int32_t> shown() {
    std::vector<std::int32_t> positions;
    for (const NeedleMove& move : display.needles) positions.push_back(move.position);
    return positions;
  }
};

TEST(TestSignal, IsOneCycleOfTheRoundedSine) {
  const RecordBuffer records = testSignal();
  ASSERT_EQ(records.count(), 200U);
  EXPECT_EQ(records.at(1).NeedleShown, 283);
  EXPECT_EQ(records.at(25).NeedleShown, 6364);
  EXPECT_EQ(records.at(50).NeedleShown, 9000);
  EXPECT_EQ(records.at(100).NeedleShown, 0);
  EXPECT_EQ(records.at(150).NeedleShown, -9000);
  EXPECT_EQ(records.at(200).NeedleShown, 0);
}

TEST_F(TestModeTest, DrivesNeedleAndGraphBySound) {
  set("GraphVisible", true);
  display.needles.clear();
  display.graph.clear();
  control();
  ASSERT_TRUE(testing());
  EXPECT_EQ(display.mode.word, "PLAY");
  EXPECT_EQ(display.mode.status, "Test Mode");
  EXPECT_EQ(display.lamp, settings.Dial_Color);
  const std::vector<std::string> wanted = {"close WavFile",
                                           "open \"/data/dummy.mp3\" type mpegvideo alias WavFile",
                                           "status WavFile length", "play WavFile"};
  EXPECT_EQ(media.commands, wanted);
  playTo(19, 1);
  EXPECT_TRUE(display.needles.empty()) << "nothing is due yet";
  playTo(40, 1);
  EXPECT_EQ(shown(), (std::vector<std::int32_t>{565, 847})) << "records 2 and 3";
  EXPECT_EQ(display.graph, shown());
  set("GraphVisible", false);
  playTo(100, 1);
  EXPECT_EQ(display.graph.size(), 2U);
  media.commands.clear();
  control();
  EXPECT_EQ(media.commands, (std::vector<std::string>{"stop WavFile", "close WavFile"}));
  EXPECT_EQ(instrument.programState(), 1);
  EXPECT_EQ(display.mode.status, "Input OK");
}

TEST_F(TestModeTest, ACycleIsTwoHundredRecordsHoweverCoarseThePolls) {
  struct Row {
    int period;
    std::int64_t step;
  };
  for (const Row& row : {Row{20, 1}, {20, 3}, {20, 7}, {40, 5}, {10, 3}}) {
    session.setTestPeriod(row.period);
    control();
    media.position = 0;
    display.needles.clear();
    playTo(200 * row.period + row.step, row.step);
    EXPECT_EQ(display.needles.size(), 200U) << row.period << " by " << row.step;
    EXPECT_EQ(display.needles.back().position, 283) << "record 1 again";
    control();
  }
}

TEST_F(TestModeTest, ALatePollLeavesRecordsOutAndKeepsTheCycle) {
  control();
  display.needles.clear();
  for (const std::int64_t time : {1000, 1002, 1019, 1020}) {
    media.position = time;
    session.poll(now);
  }
  EXPECT_EQ(shown(), (std::vector<std::int32_t>{8996, 8982})) << "records 51 and 52";
}

TEST_F(TestModeTest, BeepsOnceACycleIfItIsToBeHeard) {
  control();
  playTo(4000);
  EXPECT_EQ(beeps, 0);
  session.toggleTestBeep();
  playTo(12000);
  EXPECT_EQ(beeps, 2);
}

TEST_F(TestModeTest, BorrowsTheKnobAndTheNeedleTestAlone) {
  set("KnobPosition", 12);
  receive("P7000\r");
  control();
  EXPECT_EQ(display.knob, 0);
  EXPECT_TRUE(instrument.state().NeedleTest);
  EXPECT_FALSE(instrument.needleTestChosen());
  key(Key::Up);
  key(Key::C);
  EXPECT_NE(settings.KnobPosition, 0);
  EXPECT_EQ(instrument.liveSettings().KnobPosition, 12) << "settings are written as they were";
  control();
  EXPECT_EQ(settings.KnobPosition, 12);
  EXPECT_EQ(display.knob, 12);
  EXPECT_FALSE(instrument.state().NeedleTest);
  EXPECT_TRUE(instrument.state().BdRunning) << "C acted on the live counter";
}

TEST_F(TestModeTest, GivesBackANeedleTestThatRan) {
  instrument.setNeedleTest(true, now);
  control();
  control();
  EXPECT_TRUE(instrument.state().NeedleTest);
}

TEST_F(TestModeTest, TheMetersSamplesMoveNothing) {
  receive("P7000\r");
  control();
  display.needles.clear();
  for (int n = 0; n < 100; ++n) receive("P1111\r");
  EXPECT_TRUE(display.needles.empty());
  EXPECT_FALSE(instrument.state().NewReading);
  EXPECT_NEAR(instrument.state().Reading, 32768 + 997, 1) << "100 steps of the synthetic reading";
  control();
  receive("P7000\r");
  EXPECT_EQ(instrument.state().Reading, 0x7000);
}

TEST_F(TestModeTest, WorksWithoutAMeter) {
  instrument.disconnected(now);
  control();
  playTo(100);
  session.cmdStop(now);
  EXPECT_EQ(instrument.programState(), 0);
  EXPECT_EQ(display.mode.status, "No Meter");
}

TEST_F(TestModeTest, AsksBeforeItDiscards) {
  recordSeconds(1);
  control();
  EXPECT_EQ(view.asked.back(), "Previous recording not saved, Continue?");
  view.reply(false);
  EXPECT_FALSE(testing());
  EXPECT_TRUE(session.take().unsaved);
  control();
  view.reply(true);
  EXPECT_TRUE(testing());
  EXPECT_EQ(view.loadedFile, "No File Loaded");
  EXPECT_FALSE(session.take().loaded);
  EXPECT_EQ(journals.back().fate, "removed");
  control();
  session.cmdPlay(now);
  EXPECT_EQ(instrument.programState(), 1) << "nothing is left to play";
}

TEST_F(TestModeTest, WithoutATimingTrackNothingIsDiscarded) {
  recordSeconds(1);
  settings.RecPromptEnable = false;
  files.contents.erase("/data/dummy.mp3");
  control();
  EXPECT_EQ(view.told.back(),
            "The Dummy.mp3 file is missing. This should be located in the application directory.");
  media.refuse = true;
  files.contents["/data/dummy.mp3"] = "nonsense";
  control();
  EXPECT_EQ(view.told.back(),
            "The Dummy.mp3 file could not be loaded for the following reason(s): 302");
  EXPECT_FALSE(testing());
  EXPECT_TRUE(session.take().unsaved);
}

TEST_F(TestModeTest, EveryWayToEndIt) {
  const std::function<void()> ends[] = {
      [this] { control(); },
      [this] { session.cmdStop(now); },
      [this] {
        settings.RecordVisible = false;
        session.cmdStop(now);
      },
      [this] { session.prepareExit([](bool) {}); },
      [this] { session.prepareSilentExit([] {}); },
  };
  for (const auto& end : ends) {
    control();
    ASSERT_TRUE(testing());
    EXPECT_EQ(session.pollPeriod(), std::chrono::milliseconds{2});
    end();
    EXPECT_EQ(instrument.operation(), Operation::None);
    EXPECT_EQ(media.commands.back(), "close WavFile");
    EXPECT_FALSE(session.pollPeriod());
  }
}

TEST_F(TestModeTest, ADeviceThatFallsSilentLeavesItOnItsOwnClock) {
  control();
  media.silent = true;
  display.needles.clear();
  for (int n = 0; n < 100; ++n) {
    wait(std::chrono::milliseconds{2});
    session.poll(now);
  }
  EXPECT_GE(display.needles.size(), 9U);
}

}  // namespace
}  // namespace qv3
