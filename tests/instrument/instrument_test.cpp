#include "instrument/instrument.h"

#include <gtest/gtest.h>

#include "tests/support/instrumentrig.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;

// What the replay scripts do not pin, above all what is shown.

struct InstrumentTest : testing::Test, test::InstrumentRig {
  InstrumentTest() {
    connect();
    receive("P7000\r");
    receive("P7000\r");
  }
  void ticks(int count) {
    for (int n = 0; n < count; ++n) instrument.clockTick(now);
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
  key(Key::Up);
  EXPECT_EQ(display.knob, 1);
}

TEST_F(InstrumentTest, SilenceShowsAtTheThirdTickAndOnlyOnALink) {
  ticks(2);
  EXPECT_EQ(display.mode.status, "Input OK");
  ticks(1);
  EXPECT_EQ(display.mode.status, "Input Error");
  EXPECT_EQ(display.mode.colour, kRed);
  for (int n = 0; n < 4; ++n) receive("P7000\r");
  EXPECT_EQ(display.mode.status, "Input Error");
  receive("P7000\r");
  EXPECT_EQ(display.mode.status, "Input OK") << "at the fifth good event";
  instrument.disconnected(now);
  ticks(5);
  EXPECT_EQ(display.mode.status, "No Meter");
  EXPECT_EQ(display.mode.word, "");
}

TEST_F(InstrumentTest, AMessageLiesOverTheStatusAndKeepsItsKeysAway) {
  key(Key::F);
  EXPECT_EQ(display.mode.status, "Freeze ON");
  key(Key::F);
  key(Key::B);
  EXPECT_TRUE(settings.FreezeEnable);
  EXPECT_FALSE(instrument.state().BmOff);
  ticks(3);
  EXPECT_EQ(display.mode.status, "Freeze ON");
  wait(milliseconds{1500});
  EXPECT_EQ(display.mode.status, "Input Error") << "what came beneath it";
  key(Key::B);
  EXPECT_EQ(display.mode.status, "BM OFF");
}

TEST_F(InstrumentTest, PlaybackFindsNoTimerRunning) {
  for (const Timer timer :
       {Timer::tmrLED, Timer::tmrRise, Timer::tmrFall, Timer::tmrBdMouseDown, Timer::message}) {
    instrument.core().timers.start(timer, now.steady);
    instrument.startPlayback(now);
    EXPECT_EQ(instrument.core().timers.running(timer), timer == Timer::message);
    instrument.bdMouse(false, now);
    EXPECT_FALSE(instrument.state().BdRunning);
    instrument.stopPlayback(now);
  }
}

TEST_F(InstrumentTest, HoldingTheBdReadOutZeroesItAndAClickToggles) {
  instrument.core().state.BdAccum = 400;
  for (const int held : {200, 1500}) {
    instrument.bdMouse(true, now);
    wait(milliseconds{held});
    instrument.bdMouse(false, now);
    EXPECT_TRUE(instrument.state().BdRunning) << "the release after a hold does not toggle";
    EXPECT_EQ(instrument.state().BdAccum, held < 1500 ? 400 : 0);
  }
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

}  // namespace
}  // namespace qv3
