#include "recording/recorder.h"

#include <gtest/gtest.h>

#include <vector>

namespace qv3 {
namespace {

struct Recording : testing::Test {
  Recorder recorder;

  void begin(bool withSound) {
    recorder.start(withSound);
    recorder.startData({});
  }
  std::int32_t append(std::int32_t sampleCount) {
    Recorder::Sample sample;
    sample.sampleCount = sampleCount;
    recorder.append(sample);
    return recorder.records().at(recorder.records().count()).Time;
  }
  void second(int samples) {
    for (int n = 1; n <= samples; ++n) append(n);
  }
};

TEST_F(Recording, WithoutSoundTimeIsTheSampleCount) {
  begin(false);
  EXPECT_EQ(append(1), 20);
  EXPECT_EQ(append(2), 40);
  EXPECT_EQ(append(5), 100);
}

TEST_F(Recording, FirstSampleOfASecondIsCorrectedByTheOneBefore) {
  struct Row {
    int samples;
    std::int32_t first;
  };
  for (const Row& row : {Row{49, 990}, Row{50, 1000}, Row{51, 1010}}) {
    begin(true);
    second(row.samples);
    ASSERT_TRUE(recorder.takeSoundPosition(2 * kSoundBytesPerSecond));
    EXPECT_EQ(append(1), row.first) << row.samples;
  }
}

TEST_F(Recording, TimeIsNeverNegativeAndNeverFalls) {
  begin(true);
  EXPECT_EQ(append(1), 0) << "no second before: 10 ms early would be negative";
  second(60);
  EXPECT_EQ(recorder.records().at(recorder.records().count()).Time, 1180);
  ASSERT_TRUE(recorder.takeSoundPosition(2 * kSoundBytesPerSecond));
  EXPECT_EQ(append(1), 1180);
}

TEST_F(Recording, SoundSecondsCountFromTheEndOfTheLeadIn) {
  recorder.start(true);
  EXPECT_FALSE(recorder.takeSoundPosition(44099));
  EXPECT_TRUE(recorder.takeSoundPosition(44100));
  EXPECT_EQ(recorder.elapsedSeconds(), 0);
  EXPECT_FALSE(recorder.takeSoundPosition(50000));
  EXPECT_TRUE(recorder.takeSoundPosition(88200));
  EXPECT_EQ(recorder.elapsedSeconds(), 1);
}

TEST_F(Recording, ATagWaitsForTheNextSampleAndIsDroppedByRecord) {
  begin(false);
  recorder.markTag();
  append(1);
  EXPECT_EQ(recorder.records().at(1).Mark, 'T');
  append(2);
  EXPECT_EQ(recorder.records().at(2).Mark, 0);
  recorder.markTag();
  begin(false);
  append(1);
  EXPECT_EQ(recorder.records().at(1).Mark, 0);
}

TEST_F(Recording, GrowingKeepsWhatIsThere) {
  begin(false);
  for (int n = 1; n <= 7000; ++n) append(n);
  const SampleRecord* first = &recorder.records().at(1);
  for (int n = 7001; n <= 20000; ++n) append(n);
  EXPECT_EQ(first, &recorder.records().at(1)) << "no record moves";
  for (std::size_t n = 1; n <= 20000; ++n) {
    ASSERT_EQ(recorder.records().at(n).Time, static_cast<std::int32_t>(n) * 20);
  }
}

}  // namespace
}  // namespace qv3
