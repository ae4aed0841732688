#include <gtest/gtest.h>

#include "instrument/playcontrol.h"
#include "instrument/recordcontrol.h"
#include "tests/support/fakemedia.h"
#include "tests/support/instrumentrig.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;

const std::string kTimingTrack = "open \"/data/dummy.mp3\" type mpegvideo alias WavFile";

struct RecordControlTest : testing::Test, test::InstrumentRig, RecordEvents {
  test::FakeMedia media;
  RecordControl control{instrument, media, "/data/dummy.mp3", *this};
  CalendarTime wall{2017, 1, 5, 14, 3, 27};
  std::optional<SessionStart> started;
  std::optional<bool> ended;
  std::string refused;

  RecordControlTest() {
    connect();
    receive("P7000\r");
  }

  void dataStarted(const SessionStart& start) override { started = start; }
  void soundRefused(const std::string& reason) override { refused = "refused" + reason; }
  void recordingEnded(bool kept) override { ended = kept; }

  void poll() { control.poll(now, wall); }
  void pollAfter(int time) {
    wait(milliseconds{time});
    poll();
  }
  void frame() {
    receive("P7000\r");
    control.received(now);
    poll();
  }
  void record(bool withSound) {
    settings.AudioEnable = withSound;
    control.start(now);
    media.mode = "recording";
  }
  /// Frames while the sound comes to `seconds`.
  void soundTo(double seconds) {
    media.position = static_cast<std::int64_t>(seconds * kSoundBytesPerSecond);
    frame();
  }
  std::size_t kept() const { return instrument.recorder().records().count(); }
};

TEST_F(RecordControlTest, WithSoundTheLeadInIsASecondOfSoundAndIsCutAtTheEnd) {
  record(true);
  soundTo(0.99);
  EXPECT_EQ(kept(), 0U);
  soundTo(1.0);
  ASSERT_TRUE(started);
  EXPECT_EQ(started->secondsOfDay, 14 * 3600 + 3 * 60 + 27);
  EXPECT_EQ(started->day, 6215);
  soundTo(1.5);
  control.stop(RecordControl::Cause::User, now);
  EXPECT_EQ(instrument.operation(), Operation::Stopping);
  soundTo(1.9);
  EXPECT_FALSE(ended) << "not before the second is whole";
  soundTo(2.0);
  EXPECT_EQ(ended, true);
  EXPECT_EQ(kept(), 3U) << "samples are kept to the end";
  const std::vector<std::string> expected = {
      "close WavFile",
      "open new type waveaudio alias WavFile",
      "set WavFile bitspersample 16 channels 1 alignment 2 samplespersec 22050 bytespersec 44100 "
      "time format bytes format tag pcm wait",
      "record WavFile",
      "stop WavFile",
      "seek WavFile to start",
      "delete WavFile from 0 to 44100"};
  EXPECT_EQ(media.commands, expected);
}

TEST_F(RecordControlTest, WithoutSoundItStopsOnAWholeSecondOfSamples) {
  record(false);
  EXPECT_EQ(media.commands.back(), kTimingTrack);
  for (int n = 0; n < 49; ++n) frame();
  EXPECT_FALSE(started);
  frame();
  ASSERT_TRUE(started);
  for (int n = 0; n < 70; ++n) frame();
  control.stop(RecordControl::Cause::User, now);
  control.stop(RecordControl::Cause::User, now);
  for (int n = 0; n < 29; ++n) frame();
  EXPECT_FALSE(ended);
  frame();
  EXPECT_EQ(ended, true);
  EXPECT_EQ(kept(), 100U);
}

TEST_F(RecordControlTest, EveryWaitIsBounded) {
  record(true);
  media.silent = true;
  pollAfter(2999);
  EXPECT_FALSE(started);
  pollAfter(1);
  EXPECT_TRUE(started);
  control.stop(RecordControl::Cause::User, now);
  pollAfter(3000);
  EXPECT_EQ(ended, false) << "not one sample";

  record(false);
  for (int n = 0; n < 60; ++n) frame();
  control.stop(RecordControl::Cause::User, now);
  ended.reset();
  pollAfter(999);
  EXPECT_FALSE(ended);
  pollAfter(1);
  EXPECT_EQ(ended, true) << "the meter fell silent";
}

TEST_F(RecordControlTest, ALostLinkEndsWhatIsUnderWay) {
  record(false);
  frame();
  instrument.portLost(now);
  EXPECT_EQ(ended, false) << "a lead-in is given up";
  EXPECT_EQ(instrument.programState(), 1);
  for (const bool withSound : {false, true}) {
    record(withSound);
    for (int n = 0; n < 60; ++n) soundTo(1.0 + 0.02 * n);
    ended.reset();
    for (int n = 0; n < 3; ++n) instrument.clockTick(now);
    EXPECT_EQ(ended.has_value(), !withSound) << "the sound has to complete its second";
    EXPECT_EQ(display.mode.status, "Input Error") << "at once";
    EXPECT_EQ(display.mode.colour, kRed);
    EXPECT_EQ(instrument.decoder().GoodEvents, 0);
    media.position = 3 * kSoundBytesPerSecond;
    poll();
    EXPECT_EQ(ended, true);
    EXPECT_EQ(display.mode.status, "Input Error");
  }
}

TEST_F(RecordControlTest, ASpoolThatCannotBeMadeLeavesARecordingWithoutSound) {
  media.refused = "record WavFile";
  record(true);
  EXPECT_FALSE(refused.empty());
  EXPECT_FALSE(instrument.recorder().withSound());
  EXPECT_EQ(media.commands.end()[-2], "close WavFile") << "what holds no sound plays to no end";
  EXPECT_EQ(media.commands.back(), kTimingTrack);
  for (int n = 0; n < 60; ++n) frame();
  EXPECT_EQ(kept(), 10U);
}

struct PlayControlTest : testing::Test, test::InstrumentRig, PlayEvents {
  test::FakeMedia media;
  PlayControl control{instrument, media, *this};
  RecordBuffer records;
  bool ended = false;

  PlayControlTest() {
    connect();
    set("KnobPosition", 12);
    receive("P7000\r");
    receive("P7000\r");
    for (int n = 0; n < 200; ++n) {
      SampleRecord record;
      record.Time = n * 20;
      record.NeedleShown = static_cast<std::int16_t>(n);
      record.KnobPosition = 30;
      record.BasePosition = 200;
      record.BdTenths = 77;
      record.Flags = packFlags(n == 1 ? Lamp::BodyMotion : Lamp::Off, n == 1, false, 2);
      records.append(record);
    }
    control.load(records, SessionStart{3600, 1}, 1000, true);
  }

  void showPlayTime(std::int64_t) override {}
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
  instrument.core().state.BdRunning = true;
  receive("P6800\r");
  instrument.panelPressed(now);
  const MeterState before = instrument.state();
  control.play(now);
  EXPECT_EQ(display.mode.word, "PLAY");
  EXPECT_EQ(display.mode.status, "Playback");
  pollAt(0);
  EXPECT_TRUE(display.needles.back().faceFresh) << "the first record starts on a fresh face";
  pollAt(20);
  receive("P1111\r");
  EXPECT_NE(instrument.state().Reading, 0x1111) << "the line is read and dropped";
  EXPECT_EQ(display.needles.back().position, 1);
  EXPECT_EQ(display.needles.back().colour, settings.FreezeNeedle_Color);
  EXPECT_EQ(display.lamp, settings.LED_BM_Color);
  EXPECT_EQ(display.knob, 30);
  EXPECT_EQ(display.bd, "7.7");
  EXPECT_EQ(settings.DialType, 2);
  EXPECT_EQ(instrument.liveSettings().DialType, 1);
  control.stop(now);
  EXPECT_TRUE(ended);
  EXPECT_EQ(display.knob, 12);
  EXPECT_EQ(settings.DialType, 1);
  EXPECT_EQ(instrument.programState(), 1);
  EXPECT_EQ(instrument.state().NeedlePosition, before.NeedlePosition);
  EXPECT_EQ(instrument.state().BaseText, before.BaseText);
  EXPECT_EQ(instrument.state().BdText, before.BdText);
  EXPECT_EQ(instrument.state().BdAccum, before.BdAccum);
  EXPECT_TRUE(instrument.state().BdRunning);
  EXPECT_FALSE(instrument.state().BodyMotion || instrument.state().Frozen);
  EXPECT_TRUE(instrument.state().SetRequest) << "a SET waits until the instrument is live again";
  EXPECT_EQ(display.mode.status, "Input OK");
}

TEST_F(PlayControlTest, PausesAndResumesAndLoopsUntilItMayEnd) {
  settings.PlayLoopEnable = true;
  control.play(now);
  pollAt(0);
  control.play(now);
  EXPECT_EQ(display.mode.word, "PAUSE");
  EXPECT_TRUE(instrument.allowed(Command::Play));
  control.play(now);
  EXPECT_EQ(display.mode.word, "PLAY");
  const int panels = display.panels;
  pollAt(20);
  for (std::int64_t time = 40; control.player().playIndex() > 1; time += 20) pollAt(time);
  EXPECT_FALSE(ended);
  EXPECT_GT(display.panels, panels);
  pollAt(0);
  pollAt(500);
  EXPECT_EQ(display.lamp, settings.LED_Lag_Color) << "late";
  settings.PlayLoopEnable = false;
  for (std::int64_t time = 0; !ended && time < 9000; time += 20) pollAt(time);
  EXPECT_TRUE(ended);
  EXPECT_EQ(instrument.programState(), 1);
}

}  // namespace
}  // namespace qv3
