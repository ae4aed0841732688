#include "instrument/recordcontrol.h"

#include <gtest/gtest.h>

#include "tests/support/fakemedia.h"
#include "tests/support/instrumentrig.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;

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
  EXPECT_EQ(media.commands.back(), "open \"/data/dummy.mp3\" type mpegvideo alias WavFile");
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
  wait(milliseconds{2999});
  poll();
  EXPECT_FALSE(started);
  wait(milliseconds{1});
  poll();
  EXPECT_TRUE(started);
  control.stop(RecordControl::Cause::User, now);
  wait(milliseconds{3000});
  poll();
  EXPECT_EQ(ended, false) << "not one sample";
}

TEST_F(RecordControlTest, ASilentMeterEndsAStopWithoutSound) {
  record(false);
  for (int n = 0; n < 60; ++n) frame();
  control.stop(RecordControl::Cause::User, now);
  wait(milliseconds{999});
  poll();
  EXPECT_FALSE(ended);
  wait(milliseconds{1});
  poll();
  EXPECT_EQ(ended, true);
}

TEST_F(RecordControlTest, ALostLinkEndsWhatIsUnderWay) {
  record(false);
  frame();
  instrument.portLost(now);
  EXPECT_EQ(ended, false) << "a lead-in is given up";
  EXPECT_EQ(instrument.programState(), 1);
  record(false);
  for (int n = 0; n < 60; ++n) frame();
  for (int n = 0; n < 3; ++n) instrument.clockTick(now);
  EXPECT_EQ(ended, true);
  EXPECT_EQ(display.mode.status, "Input Error");
}

TEST_F(RecordControlTest, ASilentMeterShowsBeforeTheSoundHasCompletedItsSecond) {
  record(true);
  for (int n = 0; n < 60; ++n) soundTo(1.0 + 0.02 * n);
  for (int n = 0; n < 3; ++n) instrument.clockTick(now);
  EXPECT_EQ(instrument.operation(), Operation::Stopping);
  EXPECT_EQ(display.mode.status, "Input Error");
  EXPECT_EQ(display.mode.colour, kRed);
  EXPECT_EQ(instrument.decoder().GoodEvents, 0);
  media.position = 3 * kSoundBytesPerSecond;
  poll();
  EXPECT_EQ(ended, true);
  EXPECT_EQ(display.mode.status, "Input Error");
}

TEST_F(RecordControlTest, ASpoolThatCannotBeMadeLeavesARecordingWithoutSound) {
  media.refuse = true;
  record(true);
  EXPECT_FALSE(refused.empty());
  EXPECT_FALSE(instrument.recorder().withSound());
  for (int n = 0; n < 60; ++n) frame();
  EXPECT_EQ(kept(), 10U);
}

}  // namespace
}  // namespace qv3
