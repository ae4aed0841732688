#include "recording/player.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <sstream>
#include <utility>

#include "recording/positionbar.h"
#include "tests/support/fakemedia.h"
#include "tests/support/records.h"

namespace qv3 {
namespace {

/// A playback that is driven by a script and writes down, in order, what the player says to the
/// sound device and what it shows: "#20" a record of 20 ms, "t3" a play time of 3 s.
class Playback final : public PlayerView {
 public:
  explicit Playback(int count, std::int32_t startSeconds = 0)
      : m_records(test::someRecords(count)) {
    m_sound.attach(kUnits, true);
    player.load(m_records, startSeconds);
  }

  std::string run(const std::string& script) {
    m_script.str(script);
    for (std::string step; m_script >> step;) m_steps.at(step)();
    note({});
    return m_said;
  }

  void firstRecord() override { note("first"); }
  void jumped() override { note("jump"); }
  void showRecord(const SampleRecord& record) override {
    m_lastShown = record.Time;
    if (!m_through) note({});
  }
  void loopRestarted() override { note("loop"); }
  void showPlayTime(std::int64_t seconds) override {
    if (std::exchange(m_playTime, seconds) != seconds) note("t" + std::to_string(seconds));
  }
  void showProgress(const PlayRange&, double place) override { progress = place; }
  void showSessionClock(std::int64_t seconds) override { note("clock " + std::to_string(seconds)); }
  bool lagLampLit() const override { return m_lag; }
  void setLagLamp(bool lit) override {
    m_lag = lit;
    note(lit ? "lag on" : "lag off");
  }
  void playedToEnd() override {
    note("end");
    player.stop(m_now);
  }

 private:
  static constexpr std::int32_t kUnits = 44100;

  std::int64_t number() {
    std::int64_t value = 0;
    m_script >> value;
    return value;
  }
  void say(const std::string& what) { m_said += (m_said.empty() ? "" : ", ") + what; }
  /// After what the player said to the device and showed before.
  void note(const std::string& what) {
    for (std::string command : std::exchange(m_media.commands, {})) {
      say(command.erase(command.find(" WavFile"), 8));
    }
    if (m_lastShown) say((m_through ? "..#" : "#") + std::to_string(*m_lastShown));
    m_lastShown.reset();
    if (!what.empty()) say(what);
  }
  void poll() { player.poll(m_now, 2, m_loop); }
  /// The sound comes to a time.
  void at(std::int64_t time) {
    m_media.position = time * kUnits / 1000;
    poll();
  }
  void through() {
    m_through = true;
    for (std::int64_t time = number(), last = number(); time <= last; time += 20) at(time);
    note({});
    m_through = false;
  }
  void range() {
    const auto from = static_cast<int>(number());
    player.setRange(from, static_cast<int>(number()));
  }

  const std::map<std::string, std::function<void()>> m_steps = {
      {"start", [this] { player.start(m_now); }},
      {"pause", [this] { player.pause(m_now); }},
      {"resume", [this] { player.resume(m_now); }},
      {"fwd", [this] { player.skip(true, m_now); }},
      {"back", [this] { player.skip(false, m_now); }},
      {"seek", [this] { player.seekTo(static_cast<int>(number()), m_now); }},
      {"range", [this] { range(); }},
      {"loop", [this] { m_loop = true; }},
      {"at", [this] { at(number()); }},
      {"through", [this] { through(); }},
      {"wait", [this] { m_now += std::chrono::milliseconds(number()), poll(); }},
      {"stopped", [this] { m_media.mode = "stopped"; }},
      {"refuse", [this] { m_media.refuse = true; }},
      {"silent", [this] { m_media.silent = true; }},
      {"modeless", [this] { m_media.modeless = true; }},
  };
  RecordBuffer m_records;
  test::FakeMedia m_media;
  SessionSound m_sound{m_media};
  Player::Instant m_now{0};
  std::istringstream m_script;
  std::string m_said;
  std::optional<std::int32_t> m_lastShown;
  bool m_through = false;  ///< of the records shown only the last before something else counts
  std::int64_t m_playTime = -1;
  bool m_lag = false;
  bool m_loop = false;

 public:
  Player player{m_sound, *this};
  double progress = -1;
};

TEST(Player, ReleasesRecordsAsTheSoundReachesThem) {
  struct Row {
    const char* name;
    int count;
    std::int32_t startSeconds;
    const char *script, *said;
  };
  const std::vector<Row> rows = {
      {"from the begin of the range", 2000, 0, "range 500 1000 start at 19980",
       "seek to 881118, t19, play, first, #19980"},
      {"each when its time has come", 100, 0, "start at 0 at 19 at 20 at 29 at 41",
       "seek to 0, t0, play, first, #0, #20, #40"},
      {"late ones back to back, the last is shown, the lag lamp for 0.1 s", 100, 0,
       "start at 0 at 100 wait 50 at 120 wait 60 at 140",
       "seek to 0, t0, play, first, #0, lag on, #100, #120, lag off, #140"},
      {"up to the last but one", 60, 0, "start through 0 1300",
       "seek to 0, t0, play, first, ..#980, t1, ..#1160, end, stop"},
      {"until the sound ends", 60, 0, "start at 0 stopped at 20 at 20",
       "seek to 0, t0, play, first, #0, #20, end, stop"},
      {"over and over in a loop", 1000, 0,
       "loop range 100 200 start through 1980 3980 at 4000 at 1980",
       "seek to 87318, t1, play, first, ..#1980, t2, ..#2980, t3, ..#3980, "
       "seek to 87318, t1, play, loop, first, #1980"},
      {"but not over and over a single record", 1, 0, "loop start at 0",
       "seek to 0, t0, play, first, end, stop"},
      {"on from the last position after a pause", 100, 0,
       "start at 0 at 20 pause at 400 resume at 40",
       "seek to 0, t0, play, first, #0, #20, pause, play from 882, #40"},
      {"half a second after the last skip, by 15 s of a session of 20 min", 60000, 0,
       "start at 0 fwd fwd wait 499 wait 1",
       "seek to 0, t0, play, first, #0, pause, jump, t15, jump, t30, play from 1323882, #30020"},
      {"after skips within the range, a second before its end, and paused stays paused", 3000, 0,
       "range 100 500 start back fwd fwd fwd fwd fwd pause wait 600 back resume wait 600",
       "seek to 263718, t5, play, pause, jump, jump, t15, jump, t25, jump, t28, jump, jump, pause, "
       "jump, t18, play from 837018, first, #18980"},
      {"where the bar was clicked, inside the range only", 1000, 0,
       "range 200 800 start at 3980 seek 199 seek 801 seek 500 at 9980",
       "seek to 175518, t3, play, first, #3980, t9, play from 440118, first, #9980"},
      {"with the session's clock at whole minutes", 3000, 86398, "start through 0 3000",
       "seek to 0, t0, clock 86398, play, first, ..#980, t1, ..#1980, t2, clock 86400, ..#2980, "
       "t3, "
       "..#3000"},
      {"with its clock after a click at once, within a minute not again", 50000, 36000,
       "start at 0 seek 500 at 500000",
       "seek to 0, t0, clock 36000, play, first, #0, t499, clock 36499, play from 22049118, first, "
       "t500, #500000"},
      {"by a clock of its own where the device refuses", 500, 0,
       "refuse start wait 0 wait 20 wait 20 wait 20", "t0, first, #0, #20, #40, #60"},
      {"on from the last position of a device that falls silent", 500, 0,
       "start at 0 wait 1000 at 1000 silent wait 100",
       "seek to 0, t0, play, first, #0, lag on, t1, #1000, #1100"},
      {"and of one that does not tell its mode any more", 500, 0,
       "start at 0 wait 1000 at 1000 modeless wait 100",
       "seek to 0, t0, play, first, #0, lag on, t1, #1000, #1100"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Playback(row.count, row.startSeconds).run(row.script), row.said) << row.name;
  }
}

TEST(Player, TellsThePlaceOfTheNextRecordOnTheBar) {
  Playback playback(200);
  playback.run("start at 0 at 20 at 40");
  EXPECT_EQ(playback.progress, 15) << "the third of 200 was due";
}

TEST(Player, RangesFromDrags) {
  Playback playback(1000);
  struct Row {
    int from, to;
    std::size_t start, end;
  };
  for (const Row& row : {Row{700, 300, 300, 700}, Row{300, 300, 300, 700}, Row{0, 1000, 1, 1000},
                         Row{100, 140, 1, 1000}, Row{-50, 2000, 1, 1000}, Row{0, 49, 1, 1000}}) {
    playback.player.setRange(row.from, row.to);
    const PlayRange& range = playback.player.range();
    EXPECT_EQ(std::pair(range.start, range.end), std::pair(row.start, row.end)) << row.from;
  }
}

TEST(Player, TheShortestRangeIsOneWhereverItLies) {
  EXPECT_EQ(Playback(49).player.shortestRange(), PlayRange::kBarWidth);
  for (const int count : {50, 51, 99, 500, 2999, 180000}) {
    Playback playback(count);
    Player& player = playback.player;
    const int shortest = player.shortestRange();
    ASSERT_GE(shortest, 1);
    for (int from = 0; from + shortest <= PlayRange::kBarWidth; ++from) {
      player.setRange(from, from + shortest);
      ASSERT_EQ(player.range().startMarker, from) << count;
      ASSERT_EQ(player.range().endMarker, from + shortest) << count;
    }
  }
}

TEST(PositionBar, PlacesAndColumnsMeetAtBothEndsAndInBetween) {
  for (const int width : {2, 3, 137, 676, 1000, 1001, 2548, 5096}) {
    const BarGeometry bar(width, 16);
    EXPECT_EQ(bar.column(0), 0);
    EXPECT_EQ(bar.column(1000), width);
    EXPECT_EQ(bar.placeAt(0), 0);
    EXPECT_EQ(bar.placeAt(width - 1), 1000);
    EXPECT_EQ(bar.placeAt(width - 1 + 0.9), 1000);
    EXPECT_EQ(bar.placeAt(-5), 0);
    EXPECT_EQ(bar.placeAt(width + 500), 1000);
    const int unit = width > 1000 ? width / 1000 : 0;  // where a unit is wider than a pixel
    for (int column = 0; column < width; ++column) {
      const int edge = bar.column(bar.placeAt(column));
      EXPECT_GE(edge, column - unit) << width << " at " << column;
      EXPECT_LE(edge, column + 1 + unit) << width << " at " << column;
    }
  }
  EXPECT_EQ(BarGeometry(0, 0).placeAt(3), 0);
  EXPECT_EQ(BarGeometry(1, 1).placeAt(0), 0);
}

TEST(PositionBar, PicturesOfEveryFace) {
  struct Row {
    const char* name;
    BarState state;
    BarBox block, progress;
  };
  const Row rows[] = {
      {"clear", {BarFace::Clear, {100, 200}, 150}, {}, {}},
      {"whole session", {BarFace::Range, {0, 1000}, {}}, {0, 0, 500, 20}, {}},
      {"part of it", {BarFace::Range, {100, 600}, {}}, {50, 0, 300, 20}, {}},
      {"played", {BarFace::Range, {100, 600}, 350.0}, {50, 0, 300, 20}, {50, 5, 175, 15}},
      {"at its begin", {BarFace::Range, {100, 600}, 100.0}, {50, 0, 300, 20}, {}},
      {"before its begin", {BarFace::Range, {100, 600}, 20.0}, {50, 0, 300, 20}, {}},
      {"past the bar", {BarFace::Range, {0, 1000}, 1200.0}, {0, 0, 500, 20}, {0, 5, 500, 15}},
      {"recording", {BarFace::Recording, {100, 600}, 350.0}, {238, 0, 263, 20}, {}},
      {"saving", {BarFace::Work, {100, 600}, 500.0}, {}, {0, 5, 250, 15}},
  };
  for (const Row& row : rows) {
    const BarPicture picture = BarGeometry(500, 20).picture(row.state);
    EXPECT_EQ(picture.face, row.state.face) << row.name;
    EXPECT_EQ(picture.block, row.block) << row.name;
    EXPECT_EQ(picture.progress, row.progress) << row.name;
  }
}

TEST(PositionBar, KeysMovePlaceOrEndsOfTheRange) {
  struct Row {
    BarKey key;
    bool shift;
    BarUse use;
    BarState state;
    std::optional<BarRequest> asked;
  };
  const BarState playing{BarFace::Range, {100, 600}, 350.4};
  const BarState stopped{BarFace::Range, {100, 600}, {}};
  const auto seek = [](int x) { return BarRequest{BarUse::Seek, {x, x}}; };
  const auto range = [](int from, int to) { return BarRequest{BarUse::Range, {from, to}}; };
  const Row rows[] = {
      {BarKey::Left, false, BarUse::Seek, playing, seek(340)},
      {BarKey::Right, false, BarUse::Seek, playing, seek(360)},
      {BarKey::PageRight, false, BarUse::Seek, playing, seek(450)},
      {BarKey::First, false, BarUse::Seek, playing, seek(100)},
      {BarKey::Last, false, BarUse::Seek, playing, seek(600)},
      {BarKey::Right, false, BarUse::Seek, {BarFace::Range, {100, 600}, 600.0}, {}},
      {BarKey::Right, true, BarUse::Seek, playing, {}},
      {BarKey::Left, false, BarUse::Range, stopped, range(90, 600)},
      {BarKey::Right, true, BarUse::Range, stopped, range(100, 610)},
      {BarKey::PageLeft, false, BarUse::Range, stopped, range(0, 600)},
      {BarKey::Last, false, BarUse::Range, stopped, range(599, 600)},
      {BarKey::First, true, BarUse::Range, stopped, range(100, 101)},
      {BarKey::Last, true, BarUse::Range, {BarFace::Range, {0, 1000}, {}}, {}},
      {BarKey::First, false, BarUse::Range, {BarFace::Range, {0, 1000}, {}}, {}},
      {BarKey::Last, false, BarUse::Range, {BarFace::Range, {0, 600}, {}, 200}, range(400, 600)},
      {BarKey::Left, true, BarUse::Range, {BarFace::Range, {400, 605}, {}, 200}, range(400, 600)},
      {BarKey::Left, true, BarUse::Range, {BarFace::Range, {400, 600}, {}, 200}, {}},
      {BarKey::Right, false, BarUse::Range, {BarFace::Range, {0, 100}, {}, 200}, {}},
      {BarKey::Left, false, BarUse::None, stopped, {}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(barKey(row.key, row.shift, row.use, row.state), row.asked) << "row " << &row - rows;
  }
}

}  // namespace
}  // namespace qv3
