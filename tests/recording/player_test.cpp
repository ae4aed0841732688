#include "recording/player.h"

#include <gtest/gtest.h>

#include "tests/support/fakemedia.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;
using Commands = std::vector<std::string>;

class ViewLog final : public PlayerView {
 public:
  void firstRecord() override { ++firsts; }
  void jumped() override { ++jumps; }
  void showRecord(const SampleRecord& record) override { shown.push_back(record.Time); }
  void loopRestarted() override { ++loops; }
  void showPlayTime(std::int64_t seconds) override { playTime = seconds; }
  void showProgress(const PlayRange&, double place) override { progress = place; }
  void showSessionClock(std::int64_t seconds) override { clocks.push_back(seconds); }
  bool lagLampLit() const override { return lag; }
  void setLagLamp(bool lit) override { lag = lit; }
  void playedToEnd() override {
    ended = true;
    if (player != nullptr) player->stop(Player::Instant{0});
  }

  Player* player = nullptr;
  int firsts = 0;
  int jumps = 0;
  int loops = 0;
  bool lag = false;
  bool ended = false;
  double progress = 0;
  std::int64_t playTime = -1;
  std::vector<std::int32_t> shown;
  std::vector<std::int64_t> clocks;
};

struct Playback : testing::Test {
  test::FakeMedia media;
  SessionSound sound{media};
  ViewLog view;
  Player player{sound, view};
  RecordBuffer records;
  Player::Instant now{0};
  bool loop = false;

  void load(int count, std::int32_t startSeconds = 0) {
    for (int n = 0; n < count; ++n) {
      SampleRecord record;
      record.Time = n * 20;
      records.append(record);
    }
    view.player = &player;
    sound.attach(kUnits, true);
    player.load(records, startSeconds);
  }
  /// The sound comes to a time and the player polls once.
  void pollAt(std::int32_t time) {
    media.position = std::int64_t{time} * kUnits / 1000;
    player.poll(now, 2, loop);
  }

  static constexpr std::int32_t kUnits = 44100;
};

TEST_F(Playback, StartsAtTheRangeAndSpeaksToTheDeviceInOrder) {
  load(2000);
  player.setRange(500, 1000);
  player.start(now);
  EXPECT_EQ(media.commands, (Commands{"seek WavFile to 881118", "play WavFile"}));
  EXPECT_EQ(player.playIndex(), 1000U);
  pollAt(19980);
  EXPECT_EQ(view.firsts, 1);
  EXPECT_EQ(view.shown, std::vector<std::int32_t>{19980});
}

TEST_F(Playback, ReleasesEachRecordWhenTheSoundReachesIt) {
  load(100);
  player.start(now);
  pollAt(0);
  pollAt(19);
  EXPECT_EQ(view.shown, std::vector<std::int32_t>{0});
  pollAt(20);
  pollAt(29);
  pollAt(41);
  EXPECT_EQ(view.shown, (std::vector<std::int32_t>{0, 20, 40}));
  EXPECT_FALSE(view.lag);
}

TEST_F(Playback, LateRecordsAreReleasedBackToBackAndOnlyTheLastIsShown) {
  load(100);
  player.start(now);
  pollAt(0);
  pollAt(100);  // 20 to 80 are late, 100 is not
  EXPECT_EQ(view.shown, (std::vector<std::int32_t>{0, 100}));
  EXPECT_TRUE(view.lag) << "five records in one poll, more than the limit";
  now += milliseconds{50};
  pollAt(120);
  EXPECT_TRUE(view.lag);
  now += milliseconds{60};
  pollAt(140);
  EXPECT_FALSE(view.lag);
}

TEST_F(Playback, EndsBeforeTheLastRecordOrWhenTheSoundStops) {
  load(60);
  player.start(now);
  for (int time = 0; time < 1300 && !view.ended; time += 20) pollAt(time);
  EXPECT_TRUE(view.ended);
  EXPECT_EQ(view.shown.back(), 58 * 20);
  EXPECT_EQ(media.commands.back(), "stop WavFile");

  view.ended = false;
  player.start(now);
  pollAt(0);
  media.mode = "stopped";
  pollAt(20);
  pollAt(20);
  EXPECT_TRUE(view.ended);
}

TEST_F(Playback, LoopsOverItsRangeWithoutStopping) {
  load(1000);
  loop = true;
  player.setRange(100, 200);
  player.start(now);
  for (int time = 1980; view.loops == 0 && time <= 9000; time += 20) pollAt(time);
  EXPECT_EQ(view.loops, 1);
  EXPECT_FALSE(view.ended);
  EXPECT_EQ(player.playIndex(), 100U);
  pollAt(1980);
  EXPECT_EQ(view.shown.back(), 1980);
}

TEST_F(Playback, PauseKeepsTheIndexAndResumeGoesOnFromTheLastPosition) {
  load(100);
  player.start(now);
  pollAt(0);
  pollAt(20);
  const std::size_t index = player.playIndex();
  player.pause(now);
  pollAt(400);
  EXPECT_EQ(player.playIndex(), index);
  player.resume(now);
  EXPECT_EQ(media.commands.back(), "play WavFile from 882");
  pollAt(40);
  EXPECT_EQ(view.shown.back(), 40);
}

TEST_F(Playback, SkipsPauseTheSoundUntilTheUserStopsPressing) {
  load(60000);
  player.start(now);
  pollAt(0);
  player.skip(true, now);
  player.skip(true, now);
  EXPECT_EQ(media.commands.back(), "pause WavFile");
  EXPECT_EQ(player.playIndex(), 2U + 2 * 15 * 50) << "1200 s of session skip by 15 s";
  EXPECT_EQ(view.playTime, 30);
  now += milliseconds{499};
  player.poll(now, 2, false);
  EXPECT_EQ(media.commands.back(), "pause WavFile");
  now += milliseconds{1};
  player.poll(now, 2, false);
  EXPECT_EQ(media.commands.back(), "play WavFile from 1323882");
}

TEST_F(Playback, SkipsStayWithinTheRange) {
  load(3000);
  player.setRange(100, 500);
  player.start(now);
  player.skip(false, now);
  EXPECT_EQ(player.playIndex(), 300U);
  for (int n = 0; n < 5; ++n) player.skip(true, now);
  EXPECT_EQ(player.playIndex(), 1450U) << "a second before the end";
  player.pause(now);
  now += milliseconds{600};
  player.poll(now, 2, false);
  EXPECT_EQ(media.commands.back(), "pause WavFile") << "paused stays paused";
  player.skip(false, now);
  player.resume(now);
  EXPECT_EQ(player.playIndex(), 950U);
  EXPECT_EQ(media.commands.back(), "play WavFile from 837018") << "the new place, though just now";
  const std::size_t said = media.commands.size();
  now += milliseconds{600};
  player.poll(now, 2, false);
  EXPECT_EQ(media.commands.size(), said);
}

TEST_F(Playback, ClicksOnTheBarSeekInsideTheRangeOnly) {
  load(1000);
  player.setRange(200, 800);
  player.start(now);
  pollAt(3980);
  player.seekTo(199, now);
  player.seekTo(801, now);
  EXPECT_EQ(player.playIndex(), 201U);
  player.seekTo(500, now);
  EXPECT_EQ(player.playIndex(), 500U);
  EXPECT_EQ(media.commands.back(), "play WavFile from 440118");
  pollAt(9980);
  EXPECT_EQ(view.firsts, 2);
}

TEST_F(Playback, RangesFromDrags) {
  load(1000);
  struct Row {
    int from, to;
    std::size_t start, end;
  };
  for (const Row& row : {Row{700, 300, 300, 700}, Row{300, 300, 300, 700}, Row{0, 1000, 1, 1000},
                         Row{100, 140, 1, 1000}, Row{-50, 2000, 1, 1000}, Row{0, 49, 1, 1000}}) {
    player.setRange(row.from, row.to);
    EXPECT_EQ(player.range().start, row.start) << row.from;
    EXPECT_EQ(player.range().end, row.end) << row.from;
  }
}

TEST_F(Playback, TheShortestRangeIsOneWhereverItLies) {
  int before = 0;
  for (const int count : {50, 51, 99, 500, 2999, 180000}) {
    load(count - before);  // they are added
    before = count;
    const int shortest = player.shortestRange();
    ASSERT_GE(shortest, 1);
    for (int from = 0; from + shortest <= PlayRange::kBarWidth; ++from) {
      player.setRange(from, from + shortest);
      ASSERT_EQ(player.range().startMarker, from) << count;
      ASSERT_EQ(player.range().endMarker, from + shortest) << count;
    }
  }
}

TEST_F(Playback, NothingIsShorterThanAShortSession) {
  load(49);
  EXPECT_EQ(player.shortestRange(), PlayRange::kBarWidth);
}

TEST_F(Playback, TheSessionsClockShowsAtWholeMinutes) {
  load(3000, 86390);
  player.start(now);
  for (int time = 0; time <= 12000; time += 20) pollAt(time);
  EXPECT_EQ(view.clocks, (std::vector<std::int64_t>{86390, 86400}));
  EXPECT_EQ(view.playTime, 12);
}

TEST_F(Playback, TheSessionsClockFollowsAClickOnTheBarAtOnce) {
  load(50000, 36000);
  player.start(now);
  pollAt(0);
  player.seekTo(500, now);
  EXPECT_EQ(view.clocks, (std::vector<std::int64_t>{36000, 36499}));
  pollAt(500000);
  EXPECT_EQ(view.clocks.size(), 2U) << "the same minute";
}

TEST_F(Playback, ADeviceThatRefusesLeavesTheSessionToItsOwnClock) {
  load(500);
  media.refuse = true;
  player.start(now);
  for (int n = 0; n < 10; ++n) {
    player.poll(now, 5, false);
    now += milliseconds{20};
  }
  EXPECT_EQ(view.shown.back(), 180);
  EXPECT_EQ(view.shown.size(), 10U);
}

TEST_F(Playback, ADeviceThatFallsSilentIsGoneOnFromItsLastPosition) {
  load(500);
  player.start(now);
  pollAt(0);
  now += milliseconds{1000};
  pollAt(1000);
  media.silent = true;
  now += milliseconds{100};
  player.poll(now, 50, false);
  EXPECT_EQ(view.shown.back(), 1100);
}

}  // namespace
}  // namespace qv3
