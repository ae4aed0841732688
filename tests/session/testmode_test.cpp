#include <gtest/gtest.h>

#include <algorithm>

#include "recording/testsignal.h"
#include "tests/session/sessionrig.h"

namespace qv3 {
namespace {

struct TestModeTest : testing::Test, test::SessionRig {
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
  for (const auto& [number, needle] :
       {std::pair(1, 283), std::pair(25, 6364), std::pair(50, 9000), std::pair(100, 0),
        std::pair(150, -9000), std::pair(200, 0)}) {
    EXPECT_EQ(records.at(static_cast<std::size_t>(number)).NeedleShown, needle) << number;
  }
}

TEST_F(TestModeTest, DrivesNeedleAndGraphBySound) {
  using Words = std::vector<std::string>;
  set("GraphVisible", true);
  display.needles.clear();
  display.graph.clear();
  control();
  ASSERT_TRUE(testing());
  EXPECT_EQ(display.mode.word + display.mode.status, "PLAYTest Mode");
  EXPECT_EQ(display.lamp, settings.Dial_Color);
  EXPECT_EQ(media.commands,
            (Words{"close WavFile", "open \"/data/dummy.mp3\" type mpegvideo alias WavFile",
                   "status WavFile length", "play WavFile"}));
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
  EXPECT_EQ(media.commands, (Words{"stop WavFile", "close WavFile"}));
}

TEST_F(TestModeTest, ACycleIsTwoHundredRecordsAndAtMostABeepHoweverCoarseThePolls) {
  for (const auto& [period, step] :
       {std::pair(20, 1), std::pair(20, 3), std::pair(20, 7), std::pair(40, 5), std::pair(10, 3)}) {
    session.setTestPeriod(period);
    session.toggleTestBeep();
    beeps = 0;
    control();
    media.position = 0;
    display.needles.clear();
    playTo(200 * period + step, step);
    EXPECT_EQ(display.needles.size(), 200U) << period << " by " << step;
    EXPECT_EQ(display.needles.back().position, 283) << "record 1 again";
    EXPECT_EQ(beeps, session.test().beeps ? 1 : 0);
    control();
  }
  session.setTestPeriod(20);
  control();
  display.needles.clear();
  for (const std::int64_t time : {1000, 1002, 1019, 1020}) {
    media.position = time;
    session.poll(now);
  }
  EXPECT_EQ(shown(), (std::vector<std::int32_t>{8996, 8982})) << "late: records 51 and 52 alone";
}

TEST_F(TestModeTest, BorrowsTheKnobAndTheNeedleTestAlone) {
  set("KnobPosition", 12);
  for (const bool needleTest : {false, true}) {
    instrument.setNeedleTest(needleTest, now);
    const bool running = instrument.state().BdRunning;
    control();
    EXPECT_EQ(display.knob, 0);
    EXPECT_TRUE(instrument.state().NeedleTest);
    EXPECT_EQ(instrument.needleTestChosen(), needleTest);
    key(Key::Up);
    key(Key::C);
    EXPECT_NE(settings.KnobPosition, 0);
    EXPECT_EQ(instrument.liveSettings().KnobPosition, 12) << "settings are written as they were";
    control();
    EXPECT_EQ(settings.KnobPosition, 12);
    EXPECT_EQ(display.knob, 12);
    EXPECT_EQ(instrument.state().NeedleTest, needleTest);
    EXPECT_NE(instrument.state().BdRunning, running) << "C acted on the live counter";
  }
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

TEST_F(TestModeTest, AsksBeforeItDiscards) {
  recordSeconds(1);
  control();
  view.reply(false);
  EXPECT_FALSE(testing());
  EXPECT_TRUE(session.take().unsaved);
  control();
  view.reply(true);
  EXPECT_TRUE(testing());
  EXPECT_EQ(view.loadedFile, "No File Loaded");
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

TEST_F(TestModeTest, EndsByItsItemOrStopWithAMeterAndWithout) {
  for (const bool meter : {true, false}) {
    if (!meter) instrument.disconnected(now);
    settings.RecordVisible = meter;  // a hidden panel changes nothing
    for (const bool item : {true, false}) {
      control();
      ASSERT_TRUE(testing());
      item ? control() : session.cmdStop(now);
      EXPECT_EQ(instrument.operation(), Operation::None);
      EXPECT_EQ(instrument.programState(), meter ? 1 : 0);
      EXPECT_EQ(display.mode.status, meter ? "Input OK" : "No Meter");
      EXPECT_EQ(media.commands.back(), "close WavFile");
    }
  }
}

}  // namespace
}  // namespace qv3
