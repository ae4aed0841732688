#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "recording/sound/capturerun.h"
#include "recording/sound/playbackrun.h"
#include "recording/sound/soundunits.h"
#include "tests/support/soundrig.h"

namespace qv3::test {
namespace {

constexpr std::int64_t kRate = 22050;

/// Ten hours in which every sample tells its place.
class Counting final : public SoundReader {
 public:
  std::uint32_t framesPerSecond() const override { return kRate; }
  std::uint32_t channels() const override { return 1; }
  std::int64_t frames() const override { return 36000 * kRate; }
  void read(std::int64_t frame, std::span<std::int16_t> to) override {
    for (std::int16_t& sample : to) sample = value(frame++);
  }
  /// Never 0, which is silence.
  static std::int16_t value(std::int64_t frame) {
    return static_cast<std::int16_t>(1 + frame % kPeriod);
  }
  static constexpr int kPeriod = 32000;
};

/// A sound server with a buffer of 120 ms, which reports its latency every now and then, wrongly.
class Server {
 public:
  Server(PlaybackFeed& feed, double drift, double reportError, double firstHeard)
      : m_feed(feed), m_speed(1 + drift), m_error(reportError), m_heard(-firstHeard * kRate) {
    m_feed.streamStarted();
  }

  void step(SoundTime now, double seconds) {
    if (!stalled) move(now, seconds);
    m_feed.heard(now, reported(now));
  }

  /// The sample that is in the room now; 0 in silence.
  std::int16_t inTheRoom() const {
    if (m_heard <= 0) return 0;
    return m_samples[std::min(static_cast<std::size_t>(m_heard), m_samples.size() - 1)];
  }

  bool stalled = false;

 private:
  void move(SoundTime now, double seconds) {
    m_heard = std::min(m_heard + seconds * kRate * m_speed, static_cast<double>(m_written));
    while (static_cast<double>(m_written) < std::max(m_heard, 0.0) + 0.12 * kRate) {
      std::vector<std::int16_t> piece(kRate / 50);
      m_feed.fill(now, piece);
      m_samples.insert(m_samples.end(), piece.begin(), piece.end());
      m_written += static_cast<std::int64_t>(piece.size());
    }
    if (now >= m_nextReport && m_heard > 0) report(now);
  }
  void report(SoundTime now) {
    std::uniform_real_distribution<double> error(-m_error, m_error);
    m_reportTime = now;
    m_reportHeard = m_heard / kRate + error(m_random);
    m_interval = std::min(m_interval * 2, SoundTime(1'500'000));
    m_nextReport = now + m_interval;
  }
  std::chrono::microseconds reported(SoundTime now) const {
    if (m_reportTime.count() == 0) return std::chrono::microseconds(0);
    const double since = std::chrono::duration<double>(now - m_reportTime).count();
    const double most = static_cast<double>(m_written) / kRate;
    return std::chrono::microseconds(
        static_cast<std::int64_t>(1e6 * std::min(m_reportHeard + since, most)));
  }

  PlaybackFeed& m_feed;
  double m_speed, m_error;
  double m_heard;  ///< frames
  std::int64_t m_written = 0;
  std::vector<std::int16_t> m_samples;
  std::mt19937 m_random{7};
  SoundTime m_reportTime{0};
  double m_reportHeard = 0;
  SoundTime m_interval{20'000};
  SoundTime m_nextReport{0};
};

struct Weather {
  const char* name;
  double drift, reportError;
  double firstHeard;  ///< seconds from the first write until it is in the room
  double stallAt, stall;
};

class PlaybackClock : public testing::TestWithParam<Weather> {};

/// Milliseconds by which what is heard is ahead of the position.
double gap(const Server& server, std::int64_t position) {
  const int ahead = server.inTheRoom() - Counting::value(position);
  return 1000 * std::remainder(ahead, Counting::kPeriod) / kRate;
}

TEST_P(PlaybackClock, IsSteadyAndWithinFiveMillisecondsOfWhatIsHeard) {
  const Weather& weather = GetParam();
  constexpr SoundTime kStart{1'000'000};
  PlaybackRun run(std::make_shared<Counting>(), 0, Counting().frames(), kStart);
  Server server(run, weather.drift, weather.reportError, weather.firstHeard);
  std::int64_t last = 0;
  double worst = 0;
  for (SoundTime now = kStart; now < kStart + std::chrono::seconds(90);
       now += std::chrono::milliseconds(2)) {
    const double second = std::chrono::duration<double>(now - kStart).count();
    const double sinceStall = second - weather.stallAt;
    server.stalled = sinceStall >= 0 && sinceStall < weather.stall;
    server.step(now, 0.002);
    const std::int64_t position = run.position(now);
    ASSERT_GE(position, last) << second;
    ASSERT_LE(position - last, kRate * 5 / 1000) << second;
    ASSERT_NEAR(static_cast<double>(position) / kRate, second, 0.002 + 0.03 + second * 2.5e-4);
    last = position;
    const bool settled = second > 5 && (sinceStall < 0 || sinceStall > weather.stall + 5);
    if (settled) worst = std::max(worst, std::abs(gap(server, position)));
  }
  EXPECT_LE(worst, 5.0);
}

const Weather kWeathers[] = {
    {"Quiet", 0, 0, 0.02, 1000, 0},
    {"SlowStart", 0, 0, 0.4, 1000, 0},
    {"JitteryReports", 0, 0.006, 0.02, 1000, 0},
    {"FastCard", 200e-6, 0.003, 0.02, 1000, 0},
    {"SlowCard", -200e-6, 0.003, 0.02, 1000, 0},
    {"ShortStall", 0, 0.003, 0.02, 20, 0.2},
    {"LongStall", 0, 0.003, 0.02, 20, 4},
};
INSTANTIATE_TEST_SUITE_P(All, PlaybackClock, testing::ValuesIn(kWeathers),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PlaybackFeedTest, IsSilentAfterTheEndAndThenNoLongerWanted) {
  PlaybackRun run(std::make_shared<Counting>(), 100, 2000, SoundTime(0));
  run.streamStarted();
  std::vector<std::int16_t> piece(4000);
  run.fill(SoundTime(0), piece);
  const auto skipped = static_cast<std::int64_t>(0.02 * kRate);
  EXPECT_EQ(piece[0], Counting::value(100 + skipped))
      << "what is heard first is where the clock is";
  EXPECT_EQ(piece[static_cast<std::size_t>(1899 - skipped)], Counting::value(1999));
  EXPECT_EQ(piece[static_cast<std::size_t>(1900 - skipped)], 0);
  EXPECT_TRUE(run.wanted(SoundTime(90'000)));
  EXPECT_FALSE(run.wanted(SoundTime(1'000'000)));
  EXPECT_EQ(run.position(SoundTime(1'000'000)), 2000);
}

/// The microphone's clock is fast or slow; everything it hears is kept, in one piece.
TEST(CaptureClock, FollowsTheMicrophonesClock) {
  for (const double drift : {-200e-6, 0.0, 200e-6}) {
    MemorySoundFiles files;
    const WaveFormat format{kRate, 1, 16, 2 * kRate, 2};
    const auto spool = std::make_shared<Spool>("/s/a", files.create("/s/a"), format);
    CaptureRun run(spool, SoundTime(0));
    run.streamStarted();
    std::mt19937 random(3);
    std::int64_t heard = 0, last = 0;
    for (int fragment = 1; fragment <= 3000; ++fragment) {
      const auto due = static_cast<std::int64_t>(fragment * 20000 * (1 - drift));
      const SoundTime now(due + static_cast<std::int64_t>(random() % 12000));
      std::vector<std::int16_t> samples(kRate / 50);
      for (std::int16_t& sample : samples) sample = Counting::value(heard++);
      run.captured(now, samples);
      const std::int64_t position = run.position(now);
      EXPECT_LE(position - last, kRate * 40 / 1000);
      last = position;
    }
    const Bytes& bytes = *files.contents.at("/s/a");
    const auto sample = [&](std::int64_t frame) {
      const std::size_t at = Spool::kDataStart + static_cast<std::size_t>(frame) * 2;
      return static_cast<std::int16_t>(bytes[at] | bytes[at + 1] << 8);
    };
    const std::int64_t frames = static_cast<std::int64_t>(spool->end() / 2);
    int breaks = 0;
    for (std::int64_t frame = 1000; frame + 1 < frames; ++frame) {
      if (sample(frame + 1) != Counting::value(sample(frame))) ++breaks;
    }
    EXPECT_EQ(breaks, 0) << drift;
    const std::int64_t clock =
        run.position(SoundTime(static_cast<std::int64_t>(6e7 * (1 - drift))));
    EXPECT_NEAR(static_cast<double>(clock - frames) / kRate, 0.005, 0.010) << drift;
  }
}

TEST(SoundUnitsTest, RoundsDownGoingInAndToTheNearestComingOut) {
  const SoundUnits units(22050, 4);
  for (std::int64_t ms = 0; ms < 3000; ++ms) {
    const std::int64_t frames = units.toFrames(ms, TimeFormat::Milliseconds);
    EXPECT_EQ(frames, ms * 22050 / 1000);
    EXPECT_EQ(units.fromFrames(frames, TimeFormat::Milliseconds), ms);
  }
  EXPECT_EQ(units.toFrames(11, TimeFormat::Bytes), 2);
  EXPECT_EQ(units.fromFrames(2, TimeFormat::Bytes), 8);
  EXPECT_EQ(units.fromFrames(22050LL * 100'000'000, TimeFormat::Milliseconds), 100'000'000'000);
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  EXPECT_GT(units.toFrames(kMost, TimeFormat::Milliseconds), kMost / 2);
}

}  // namespace
}  // namespace qv3::test
