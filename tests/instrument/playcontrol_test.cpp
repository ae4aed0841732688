#include "instrument/playcontrol.h"

#include <gtest/gtest.h>

#include "tests/support/fakemedia.h"
#include "tests/support/instrumentrig.h"

namespace qv3 {
namespace {

struct PlayControlTest : testing::Test, test::InstrumentRig, PlayEvents {
  test::FakeMedia media;
  PlayControl control{instrument, media, *this};
  RecordBuffer records;
  bool ended = false;
  std::int64_t playTime = -1;

  PlayControlTest() {
    connect();
    set("KnobPosition", 12);
    receive("P7000\r");
    receive("P7000\r");
    for (int n = 0; n < 200; ++n) {
      SampleRecord record;
      record.Time = n * 20;
      record.Needle = 0x1000;
      record.NeedleShown = static_cast<std::int16_t>(n);
      record.KnobPosition = 30;
      record.Flags = packFlags(Lamp::Off, false, false, 1);
      records.append(record);
    }
    control.load(records, SessionStart{3600, 1}, 1000, true);
  }

  void showPlayTime(std::int64_t seconds) override { playTime = seconds; }
  void showProgress(const PlayRange&, double) override {}
  void showSessionClock(std::int64_t) override {}
  void playbackEnded() override { ended = true; }

  void pollAt(std::int64_t time) {
    media.position = time;
    control.poll(now);
  }
};

TEST_F(PlayControlTest, PlaysBesideALiveMeterAndGivesItsStateBackUntouched) {
  set("NeedleBdEnable", true);
  const MeterState before = instrument.state();
  control.play(now);
  EXPECT_EQ(display.mode.word, "PLAY");
  EXPECT_EQ(display.mode.status, "Playback");
  pollAt(0);
  EXPECT_TRUE(display.needles.back().faceFresh) << "the first record starts on a fresh face";
  pollAt(20);
  receive("P0001\r");
  EXPECT_EQ(display.needles.back().position, 1);
  EXPECT_FALSE(display.needles.back().faceFresh);
  EXPECT_EQ(display.knob, 30);
  control.stop(now);
  EXPECT_TRUE(ended);
  EXPECT_EQ(display.knob, 12);
  EXPECT_EQ(instrument.programState(), 1);
  EXPECT_EQ(instrument.state().NeedlePosition, before.NeedlePosition);
  EXPECT_EQ(instrument.state().BaseText, before.BaseText);
  EXPECT_EQ(instrument.state().BdAccum, before.BdAccum);
  EXPECT_EQ(display.mode.status, "Input OK");
}

TEST_F(PlayControlTest, PauseAndResumeShowInTheModeLine) {
  control.play(now);
  pollAt(0);
  control.play(now);
  EXPECT_EQ(display.mode.word, "PAUSE");
  EXPECT_TRUE(instrument.allowed(Command::Play));
  control.play(now);
  EXPECT_EQ(display.mode.word, "PLAY");
}

TEST_F(PlayControlTest, WithLoopItNeverEndsByItself) {
  settings.PlayLoopEnable = true;
  control.play(now);
  const int panels = display.panels;
  pollAt(0);
  for (std::int64_t time = 20; control.player().playIndex() > 1; time += 20) pollAt(time);
  EXPECT_FALSE(ended);
  EXPECT_GT(display.panels, panels);
  settings.PlayLoopEnable = false;
  pollAt(0);
  for (std::int64_t time = 20; !ended && time < 9000; time += 20) pollAt(time);
  EXPECT_TRUE(ended);
  EXPECT_EQ(instrument.programState(), 1);
}

TEST_F(PlayControlTest, LateRecordsLightTheLagLamp) {
  control.play(now);
  pollAt(0);
  pollAt(500);
  EXPECT_EQ(display.lamp, settings.LED_Lag_Color);
}

}  // namespace
}  // namespace qv3
