#include "instrument/instrument.h"

#include <gtest/gtest.h>

#include "tests/support/instrumentrig.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;

struct InstrumentTest : testing::Test, test::InstrumentRig {
  InstrumentTest() {
    connect();
    receive("P7000\r");
    receive("P7000\r");
  }
};

TEST_F(InstrumentTest, ReadingMovesNeedleAndGraph) {
  set("GraphVisible", true);
  receive("P7000\r");
  const std::size_t drawn = display.needles.size();
  receive("P6F00\r");
  ASSERT_EQ(display.needles.size(), drawn + 1);
  EXPECT_GT(display.needles.back().position, -2503) << "a falling reading moves to the right";
  EXPECT_FALSE(display.needles.back().faceFresh);
  EXPECT_EQ(display.graph.back(), 0x6F00);
}

TEST_F(InstrumentTest, SetLightsItsLampFor300Milliseconds) {
  instrument.panelPressed(now);
  receive("P6F00\r");
  EXPECT_EQ(display.lamp, settings.LED_Set_Color);
  wait(milliseconds{299});
  EXPECT_EQ(display.lamp, settings.LED_Set_Color);
  wait(milliseconds{1});
  EXPECT_EQ(display.lamp, settings.Dial_Color);
}

TEST_F(InstrumentTest, OffScaleNeedleIsSetByItself) {
  instrument.core().state.BmOff = true;
  for (int n = 0; n < 12; ++n) receive("P0000\r");
  EXPECT_EQ(instrument.state().NeedlePosition, 10500);
  wait(milliseconds{900});
  receive("P0000\r");
  EXPECT_EQ(instrument.state().NeedlePosition, -2503);
}

TEST_F(InstrumentTest, SilentMeterShowsWithinTwoTicks) {
  instrument.clockTick(now);
  instrument.clockTick(now);
  EXPECT_EQ(display.mode.status, "Input OK");
  instrument.clockTick(now);
  EXPECT_EQ(display.mode.status, "Input Error");
  EXPECT_EQ(display.mode.colour, kRed);
  for (int n = 0; n < 4; ++n) receive("P7000\r");
  EXPECT_EQ(display.mode.status, "Input Error");
  receive("P7000\r");
  EXPECT_EQ(display.mode.status, "Input OK") << "at the fifth good event";
}

TEST_F(InstrumentTest, SilenceShowsBeneathAMessageToo) {
  key(Key::B);
  for (int n = 0; n < 3; ++n) instrument.clockTick(now);
  EXPECT_EQ(display.mode.status, "BM OFF");
  wait(milliseconds{1500});
  EXPECT_EQ(display.mode.status, "Input Error");
}

TEST_F(InstrumentTest, PlaybackFindsNoTimerRunning) {
  struct Row {
    Timer timer;
    std::function<void()> start;
  };
  const Row rows[] = {
      {Timer::tmrLED, [this] { instrument.panelPressed(now), receive("P6F00\r"); }},
      {Timer::tmrFall,
       [this] {
         for (int n = 0; n < 12; ++n) receive("P0000\r");
       }},
      {Timer::tmrRise,
       [this] {
         for (int n = 0; n < 12; ++n) receive("PFFFF\r");
       }},
      {Timer::tmrBdMouseDown, [this] { instrument.bdMouse(true, now); }},
  };
  instrument.core().state.BmOff = true;
  for (const Row& row : rows) {
    row.start();
    ASSERT_TRUE(instrument.core().timers.running(row.timer));
    instrument.startPlayback(now);
    EXPECT_FALSE(instrument.core().timers.running(row.timer));
    instrument.bdMouse(false, now);
    EXPECT_FALSE(instrument.state().BdRunning);
    instrument.stopPlayback(now);
    receive("P7000\r");
    receive("P7000\r");
  }
}

TEST_F(InstrumentTest, ASetAskedForInPlaybackWaitsUntilTheInstrumentIsLive) {
  instrument.startPlayback(now);
  key(Key::Space);
  instrument.show({}, now);
  EXPECT_TRUE(instrument.state().SetRequest);
  instrument.stopPlayback(now);
  receive("P7000\r");  // re-centred, as after every fresh face
  EXPECT_TRUE(instrument.state().SetRequest);
  receive("P6000\r");
  EXPECT_FALSE(instrument.state().SetRequest);
  EXPECT_EQ(display.lamp, settings.LED_Set_Color);
}

TEST_F(InstrumentTest, WatchdogSleepsWithoutALink) {
  instrument.disconnected(now);
  for (int n = 0; n < 5; ++n) instrument.clockTick(now);
  EXPECT_EQ(display.mode.status, "No Meter");
  EXPECT_EQ(display.mode.word, "");
}

TEST_F(InstrumentTest, MessageLiesOverTheStatusAndKeepsItsKeysAway) {
  key(Key::F);
  EXPECT_EQ(display.mode.status, "Freeze ON");
  key(Key::F);
  EXPECT_TRUE(settings.FreezeEnable) << "no effect while the message shows";
  key(Key::B);
  EXPECT_FALSE(instrument.state().BmOff);
  wait(milliseconds{1500});
  EXPECT_EQ(display.mode.status, "Input OK");
  key(Key::B);
  EXPECT_EQ(display.mode.status, "BM OFF");
}

TEST_F(InstrumentTest, HeldKeyActsOnceButTheKnobKeepsTurning) {
  instrument.keyUp(now);
  instrument.keyDown(Key::C, now);
  instrument.keyDown(Key::C, now);
  EXPECT_TRUE(instrument.state().BdRunning);
  for (int n = 0; n < 3; ++n) instrument.keyDown(Key::Up, now);
  EXPECT_EQ(settings.KnobPosition, 4);
  EXPECT_EQ(display.knob, 4);
}

TEST_F(InstrumentTest, HoldingTheBdReadOutZeroesItAndAClickToggles) {
  instrument.bdMouse(true, now);
  wait(milliseconds{200});
  instrument.bdMouse(false, now);
  EXPECT_TRUE(instrument.state().BdRunning);
  instrument.core().state.BdAccum = 400;
  instrument.bdMouse(true, now);
  wait(milliseconds{1500});
  EXPECT_EQ(instrument.state().BdAccum, 0);
  instrument.bdMouse(false, now);
  EXPECT_TRUE(instrument.state().BdRunning) << "the release after a hold does not toggle";
}

TEST_F(InstrumentTest, WidthWipesWithoutRecentring) {
  const int panels = display.panels;
  set("Needle_Width", 2);
  EXPECT_EQ(display.wipes, 1);
  EXPECT_EQ(display.panels, panels);
  EXPECT_FALSE(instrument.state().Restart);
  set("Dial_Color", 255);
  EXPECT_EQ(display.panels, panels + 1);
  EXPECT_TRUE(instrument.state().Restart);
}

TEST_F(InstrumentTest, SensorChoiceClearsTheMarkUntilTheMeterConfirms) {
  connect("31");
  receive("L7000\r");
  EXPECT_EQ(instrument.core().sensorMark, SensorMark::Local);
  instrument.chooseSensor(true);
  EXPECT_EQ(instrument.core().sensorMark, SensorMark::None);
  receive("R7000\r");
  EXPECT_EQ(instrument.core().sensorMark, SensorMark::Remote);
  EXPECT_TRUE(settings.qv3SensorMode);
}

struct Recording : InstrumentTest {
  Recording() { settings.AudioEnable = false; }
  void record(int samples) {
    instrument.startRecording(false, now);
    receive("P7000\r");
    instrument.startData({3600, 100}, now);
    for (int n = 0; n < samples; ++n) receive("P7000\r");
  }
};

TEST_F(Recording, KeepsNothingOfTheLeadInButItsTag) {
  instrument.startRecording(false, now);
  EXPECT_EQ(display.mode.word, "RECORD");
  receive("P7000\r");
  key(Key::T);
  EXPECT_EQ(display.tags, 1);
  EXPECT_TRUE(instrument.recorder().records().empty());
  instrument.startData({0, 0}, now);
  receive("P7000\r");
  receive("P7000\r");
  const RecordBuffer& records = instrument.recorder().records();
  ASSERT_EQ(records.count(), 2U);
  EXPECT_EQ(records.at(1).Mark, 'T');
  EXPECT_EQ(records.at(1).Time, 20);
  EXPECT_EQ(records.at(2).Mark, 0);
  EXPECT_EQ(records.at(2).Time, 40);
}

TEST_F(Recording, SilenceEndsItWithTheRedStatus) {
  record(10);
  for (int n = 0; n < 3; ++n) instrument.clockTick(now);
  EXPECT_EQ(instrument.programState(), 1);
  EXPECT_EQ(display.mode.status, "Input Error");
  EXPECT_EQ(instrument.recorder().records().count(), 10U);
  receive("P7000\r");
  EXPECT_EQ(instrument.recorder().records().count(), 10U) << "nothing is kept after the end";
}

TEST_F(Recording, LostLineEndsItAndStateOneStays) {
  record(3);
  instrument.portLost(now);
  EXPECT_EQ(instrument.programState(), 1);
  EXPECT_EQ(display.mode.status, "Input Error");
}

TEST_F(InstrumentTest, PlaybackBorrowsAndGivesBack) {
  set("KnobPosition", 12);
  set("NeedleBdEnable", true);
  instrument.core().state.BdRunning = true;
  receive("P6800\r");
  const MeterState before = instrument.state();
  instrument.startPlayback(now);
  SampleRecord record;
  record.NeedleShown = 1234;
  record.KnobPosition = 40;
  record.BasePosition = 200;
  record.BdTenths = 77;
  record.Flags = packFlags(Lamp::BodyMotion, true, false, 2);
  record.PacketType = 'P';
  instrument.show(record, now);
  EXPECT_EQ(display.mode.word, "PLAY");
  EXPECT_EQ(display.knob, 40);
  EXPECT_EQ(display.bd, "7.7");
  EXPECT_EQ(display.needles.back().position, 1234);
  EXPECT_EQ(settings.DialType, 2);
  EXPECT_EQ(instrument.liveSettings().DialType, 1);
  receive("P1111\r");
  EXPECT_NE(instrument.state().Reading, 0x1111) << "the line is read and dropped";
  instrument.stopPlayback(now);
  EXPECT_EQ(settings.KnobPosition, 12);
  EXPECT_EQ(settings.DialType, 1);
  EXPECT_EQ(instrument.state().BdText, before.BdText);
  EXPECT_EQ(instrument.state().BdAccum, before.BdAccum);
  EXPECT_EQ(instrument.state().BaseText, before.BaseText);
  EXPECT_FALSE(instrument.state().BodyMotion);
  EXPECT_EQ(display.mode.status, "Input OK");
}

}  // namespace
}  // namespace qv3
