#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "measure/measurement.h"
#include "tools/metersim/core/backlog.h"
#include "tools/metersim/core/options.h"
#include "tools/metersim/core/signalspec.h"
#include "tools/metersim/core/simulator.h"
#include "tools/metersim/core/skinevents.h"
#include "tools/metersim/core/skinsignal.h"
#include "tools/metersim/core/text.h"

namespace qv3::metersim {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Nanos kFrame = milliseconds(20);

/// A simulator with a constant reading of 1A2B, its time, and all that it sent.
struct Bench {
  explicit Bench(std::vector<std::string> arguments = {}) {
    OptionsResult parsed = parseOptions(arguments);
    EXPECT_EQ(parsed.error, "");
    simulator = std::make_unique<Simulator>(parsed.options.simulator,
                                            std::make_unique<ConstantSignal>(0x1A2B));
    let([&](Effects& effects) { simulator->begin(now, effects); });
  }

  void let(const std::function<void(Effects&)>& act) {
    Effects effects;
    act(effects);
    for (const auto& chunk : effects.chunks) sent += chunk.characters;
    for (std::size_t n = effects.complaints.size(); n > 0; --n) sent += "[complaint]";
  }
  void wake() {
    let([&](Effects& effects) { simulator->advance(now, effects); });
  }
  /// "<U.R." is heard, a number is so many frame periods, all else is a command; "." is a CR.
  /// Returns what was sent.
  std::string play(std::string_view script) {
    for (const std::string_view step : split(script, ';')) {
      if (step.starts_with('<')) {
        std::string heard(step.substr(1));
        std::replace(heard.begin(), heard.end(), '.', '\r');
        let([&](Effects& effects) { simulator->hear(heard, now, effects); });
      } else if (const auto periods = toWhole(step)) {
        for (long n = 0; n < *periods; ++n, wake()) now += kFrame;
      } else {
        const auto command = parseCommand(step).command;
        EXPECT_TRUE(command) << step;
        let([&](Effects& effects) { simulator->obey(command.value(), now, effects); });
      }
    }
    std::string text = std::exchange(sent, {});
    std::replace(text.begin(), text.end(), '\r', '.');
    return text;
  }

  std::unique_ptr<Simulator> simulator;
  Nanos now = std::chrono::hours(1);
  std::string sent;
};

TEST(MeterSimProtocol, WhatIsHeardAndCommandedIsAnswered) {
  struct Row {
    std::string_view options, script, sent;
  };
  const std::string_view kRunning = "--autostart";
  for (const Row& row :
       {Row{"", "1", ""}, Row{"", "<R.;1", ""}, Row{"", "<U.;1", ""}, Row{"", "<U.R.;1", "P1A2B."},
        Row{"", "<U.R.O.SR.;1", "P1A2B."}, Row{"", "<U.R.Q.;1", ""}, Row{"", "<U.R.Q.R.;1", ""},
        Row{"", "<u.r.;1", ""}, Row{"", "<VU.R.;1", ""}, Row{"", "<\nU.R.;1", ""},
        Row{"", "<U.R;1", ""}, Row{"--model 40", "<U.R.;1;<O.;1", "P1A2B.O1A2B."},
        Row{"--model 40", "<U.R.O.Q.U.R.;1", "P1A2B."}, Row{"--model 2A", "<U.R.O.;1", "O1A2B."},
        Row{"--model 31", "<U.R.O.;1;<SR.;1;<SL.;1", "L1A2B.R1A2B.L1A2B."},
        Row{"--model 31", "<SR.U.R.;1", "R1A2B."}, Row{"--model 55", "<U.R.O.SL.;1", "P1A2B."},
        // Its name, between frames and in pieces too.
        Row{"--model 40 --field2 2.7 --field3 A,B", "<V.;<U.R.;1;<V;1;<.Q.",
            "V,QV40,2.7,A,B.P1A2B.P1A2B.V,QV40,2.7,A,B."},
        Row{"--answer ", "<V.", ""}, Row{"--answer no\\x20meter\\r", "<V.", "no meter."},
        // Commands of the user.
        Row{kRunning, "press;2", "T1A2B.P1A2B."},
        Row{"--autostart --model 40", "press;1", "[complaint]P1A2B."},
        Row{"--autostart --model 31", "x 2;3", "X0000.X0000.L1A2B."},
        Row{kRunning, "dropcr 2;3", "P1A2BP1A2BP1A2B."}, Row{kRunning, "burst 3;2", ""},
        Row{kRunning, "burst 3;4", "P1A2B.P1A2B.P1A2B.P1A2B."},
        Row{kRunning, "stall 0.05;3", "P1A2B."}, Row{kRunning, "stall;50", ""},
        Row{kRunning, "signal constant:255;1", "P00FF."}, Row{kRunning, "hangup;50", ""},
        Row{"", "send a\\x01\\r", "a\x01."},
        // A hung meter hears nothing, and sends no past afterwards.
        Row{kRunning, "stall;press;100;<V.Q.;resume;2", "T1A2B.P1A2B."},
        // After a hang-up it is as just plugged in.
        Row{"", "<U.R.;hangup 0.1;4;<V.", ""},
        Row{"", "<U.R.;hangup 0.1;5;<R.V.;5;<U.R.;1", "V,QV3A,1.04,20417.P1A2B."}}) {
    const std::vector<std::string_view> words = split(row.options, ' ');
    Bench bench({words.begin() + (row.options.empty() ? 1 : 0), words.end()});
    EXPECT_EQ(bench.play(row.script), row.sent) << row.options << " " << row.script;
  }
  Bench bench;
  bench.let([&](Effects& effects) { bench.simulator->obey(Garbage{500}, bench.now, effects); });
  EXPECT_EQ(bench.sent.size(), 500U);
  EXPECT_EQ(bench.sent.find('\r'), std::string::npos);
}

TEST(MeterSimProtocol, TheTimetableStartsWithTheStream) {
  Bench bench({"--at", "0.1:press", "--every", "0.06:x 1", "--at=0.2:quit"});
  EXPECT_EQ(bench.play("50;<U.R.;8"), "P1A2B.P1A2B.P1A2B.X0000.P1A2B.T1A2B.X0000.P1A2B.");
  EXPECT_FALSE(bench.simulator->finished());
  bench.play("2");
  EXPECT_TRUE(bench.simulator->finished());
}

TEST(MeterSimProtocol, ALateWakeUpLosesNothingAStallDoesNotBurst) {
  using Row = std::tuple<const char*, int, std::size_t>;
  for (const auto& [catchUp, late, frames] :
       {Row{"2", 1, 1}, Row{"2", 2, 2}, Row{"2", 3, 1}, Row{"2", 5000, 1}, Row{"1", 2, 1},
        Row{"all", 5000, 5000}}) {
    Bench bench({"--autostart", "--catch-up", catchUp});
    bench.now += late * kFrame + kFrame / 2;
    bench.wake();
    EXPECT_EQ(bench.sent.size(), frames * 6) << catchUp << " " << late << " periods";
    bench.now += kFrame / 2;
    EXPECT_EQ(bench.simulator->due(), bench.now) << "the next frame is due on the old grid";
  }
}

TEST(MeterSimProtocol, ReadingsOfLostFramesAreGone) {
  const std::vector<std::uint16_t> readings{1, 2, 3, 4, 5};
  Simulator simulator(parseOptions({"--autostart"}).options.simulator,
                      std::make_unique<ListSignal>(readings, AtEnd::Hold));
  Effects effects;
  simulator.begin(Nanos(0), effects);
  simulator.advance(4 * kFrame, effects);
  simulator.advance(5 * kFrame, effects);
  ASSERT_EQ(effects.chunks.size(), 2U);
  EXPECT_EQ(effects.chunks[0].characters + effects.chunks[1].characters, "P0004\rP0005\r");
}

TEST(MeterSimCommand, NumbersAndTextsArriveAndHaveTheirDefaults) {
  const auto parsed = [](std::string_view line) { return parseCommand(line).command.value(); };
  EXPECT_EQ(std::get<Garbage>(parsed("garbage")).count, 8);
  EXPECT_EQ(std::get<Garbage>(parsed(" garbage\t12 \r")).count, 12);
  EXPECT_EQ(std::get<ErrorFrames>(parsed("x 3")).count, 3);
  EXPECT_EQ(std::get<Stall>(parsed("stall 1.5")).time, milliseconds(1500));
  EXPECT_EQ(std::get<HangUp>(parsed("hangup")).time, std::nullopt);
  EXPECT_EQ(std::get<Fall>(parsed("fall 3000")).size, 3000);
  EXPECT_EQ(std::get<Send>(parsed("send P 1\\r\\x7f\\\\")).characters, "P 1\r\x7f\\");
  EXPECT_EQ(std::get<ChangeSignal>(parsed("signal sine:20000")).spec.numbers,
            (std::vector<double>{20000, 1000, 8}));
}

TEST(MeterSimCommand, BadLinesAreRefusedAndSilentOnesAreNot) {
  constexpr std::string_view kBad =
      "jump|Garbage|garbage 0|garbage 1001|garbage 2.5|garbage two|garbage 1 2|burst -1|stall -1|"
      "stall 1e9|hangup nan|press 1|resume now|send|send \\q|send \\x4|fall 70000|signal|"
      "signal noise|signal constant:65536|signal constant:1:2|signal sine:1:2:0|signal csv:";
  std::vector<std::string> lines{"", "  \r", "# press",
                                 "send " + std::string(kLongestCommand, 'x')};
  for (const std::string_view line : split(kBad, '|')) lines.emplace_back(line);
  for (std::size_t n = 0; n < lines.size(); ++n) {
    const CommandResult result = parseCommand(lines[n]);
    EXPECT_FALSE(result.command) << lines[n];
    EXPECT_EQ(result.error.empty(), n < 3) << lines[n];
  }
}

TEST(MeterSimCommand, LinesComeInPiecesAndOverlongOnesStayRecognisable) {
  LineSplitter lines('\n', 4);
  EXPECT_EQ(lines.feed("ab"), std::vector<std::string>{});
  EXPECT_EQ(lines.feed("c\n\nd"), (std::vector<std::string>{"abc", ""}));
  EXPECT_EQ(lines.feed("efghijk\nab\n"), (std::vector<std::string>{"defgh", "ab"}));
}

TEST(MeterSimOptions, WrongOnesAreNamed) {
  constexpr std::string_view kWrong =
      "--nonsense|stray|--model|--model 3a|--model 3AB|--model 3,|--field2 1,2|--field3 b|"
      "--seed -1|--rate-ppm 200000|--catch-up 0|--backlog 0|--link |--at 5|--at 5:jump|--at "
      "5:#nothing|"
      "--every 0:press|--signal sine:1:2:3:4|--csv-end loop|--autostart=1|--tail \\r|--answer \\z";
  for (const std::string_view line : split(kWrong, '|')) {
    const std::vector<std::string_view> words = split(line, ' ');
    EXPECT_NE(parseOptions({words.begin(), words.end()}).error, "") << line;
  }
}

TEST(MeterSimPacer, FiftyASecondToTheNanosecondForAnHourAndNoneEarlyOrTwice) {
  for (const int ppm : {0, 100, -37, 100000}) {
    FramePacer pacer(ppm);
    EXPECT_EQ(pacer.take(seconds(5)), 0);
    pacer.start(Nanos(12345));
    const std::int64_t frames = 50LL * 3600;
    for (std::int64_t i = 0; i < frames; ++i) {
      const Nanos due = pacer.due();
      ASSERT_EQ(pacer.take(due - Nanos(1)) + 10 * pacer.take(due) + pacer.take(due), 10);
    }
    const double took = static_cast<double>((pacer.due() - Nanos(12345)).count()) / 1e9;
    EXPECT_NEAR(took, static_cast<double>(frames + 1) / 50 / (1 + ppm / 1e6), 2e-9) << ppm;
  }
}

TEST(MeterSimBacklog, OnlyWhatIsOldIsStale) {
  Backlog backlog(milliseconds(300));
  std::size_t waiting = 0;
  for (Nanos now{}; now < seconds(20); now += kFrame) {
    const std::size_t stale = backlog.stale(waiting, now);
    ASSERT_TRUE(now >= milliseconds(300) || stale == 0) << now.count();
    backlog.wrote(6, now);
    waiting += 6 - stale;
    ASSERT_LE(waiting, 16U * 6) << "0.3 s of frames and the newest";
  }
  EXPECT_EQ(backlog.stale(12, seconds(20)), 0U);
  backlog.wrote(600, seconds(20));  // a burst is as fresh as a frame
  EXPECT_EQ(backlog.stale(612, seconds(20)), 0U);
  EXPECT_EQ(backlog.stale(612, milliseconds(20301)), 612U);
}

std::vector<double> readings(std::string_view spec, int count, std::uint64_t seed = 1) {
  const SignalSpecResult parsed = parseSignalSpec(spec);
  EXPECT_EQ(parsed.error, "");
  const SignalResult made = makeSignal(parsed.spec, seed, AtEnd::Repeat);
  std::vector<double> list;
  for (int i = 0; i < count; ++i) list.push_back(made.signal->next().value());
  return list;
}

double largestSecondDifference(const std::vector<double>& list) {
  double largest = 0;
  for (std::size_t i = 2; i < list.size(); ++i) {
    largest = std::max(largest, std::abs(list[i] - 2 * list[i - 1] + list[i - 2]));
  }
  return largest;
}

/// Ten minutes of a person at a gain of 1, on the arc dial.
TEST(MeterSimSignal, SkinStaysOnTheDialAndMovesNowAndThen) {
  for (std::uint64_t seed = 1; seed <= 5; ++seed) {
    constexpr int kSamples = 10 * 60 * kFramesPerSecond;
    SkinSignal signal(seed);
    MeterState state;
    Measurement measurement(state);
    int motions = 0;
    int offScale = 0;
    for (int i = 0; i < kSamples; ++i) {
      state.Reading = static_cast<std::int32_t>(std::lround(signal.next().value()));
      const bool moving = state.BodyMotion;
      measurement.processSample({}, static_cast<float>(i) * 0.02F);
      motions += state.BodyMotion && !moving ? 1 : 0;
      const OffScale place = measurement.Calc_Needle({}).offScale;
      state.Restart = false;
      const bool off = place == OffScale::Above || place == OffScale::Below;
      offScale += off ? 1 : 0;
      if (offScale % 20 == 19) state.SetRequest = true;  // as the off-scale timers do, 0.4 s on
    }
    EXPECT_LT(offScale, kSamples / 50) << seed;
    EXPECT_TRUE(motions >= 5 && motions <= 25) << seed << ": " << motions;
  }
}

TEST(MeterSimSignal, TheSeedDecides) {
  EXPECT_EQ(readings("skin", 3000, 7), readings("skin", 3000, 7));
  EXPECT_NE(readings("skin", 3000, 7), readings("skin", 3000, 8));
}

TEST(MeterSimSignal, AFallIsAsDeepAsAskedRecoversAndIsNoMovementAsOneIs) {
  for (const Fall& fall : {Fall{}, Fall{15000, 2.4, 9}, Fall{600, 0.9, 1.5}}) {
    SkinEvents events;
    events.start(fall);
    std::vector<double> course{0, 0};
    while (course.size() < 100 || course.back() < -0.1 * fall.size) course.push_back(events.next());
    const auto deepest = std::min_element(course.begin(), course.end());
    EXPECT_NEAR(*deepest, -fall.size, 0.01 * fall.size);
    EXPECT_LE(static_cast<double>(deepest - course.begin()) * kFrameSeconds, fall.onset + 0.1);
    // From the deepest point to a tenth: 2.3 time constants.
    EXPECT_NEAR(static_cast<double>(course.end() - deepest) * kFrameSeconds, 2.3 * fall.recovery,
                0.2 * fall.recovery);
    EXPECT_LT(largestSecondDifference(course), 30);
  }
  SkinEvents events;
  events.start(Movement{});
  std::vector<double> course(60);
  for (double& place : course) place = events.next();
  EXPECT_GT(largestSecondDifference(course), 100) << "trips the coarsest detector";
  EXPECT_EQ(course.back(), 0) << "and passes";
}

TEST(MeterSimSignal, PlainSignalsHaveTheirLevelsAndPeriods) {
  EXPECT_EQ(readings("constant:12345", 3), (std::vector<double>{12345, 12345, 12345}));
  EXPECT_EQ(readings("ramp:100:200:0.08", 6), (std::vector<double>{100, 125, 150, 175, 100, 125}));
  EXPECT_EQ(readings("step:1:2:0.04", 6), (std::vector<double>{1, 1, 2, 2, 1, 1}));
  const std::vector<double> sine = readings("sine:30000:1000:0.16", 9);
  EXPECT_DOUBLE_EQ(sine[0], 30000);
  EXPECT_DOUBLE_EQ(sine[2], 31000);
  EXPECT_DOUBLE_EQ(sine[6], 29000);
  EXPECT_DOUBLE_EQ(sine[8], sine[0]);
}

TEST(MeterSimSignal, AListRepeatsHoldsOrStopsAndABadOneNamesItsLine) {
  const ReadingsResult list = parseReadings("# two\r\n\n 7 \r\n65535\n\n");
  ASSERT_EQ(list.readings, (std::vector<std::uint16_t>{7, 65535}));
  using Maybe = std::optional<double>;
  for (const auto& [atEnd, third, fourth] : {std::tuple(AtEnd::Repeat, Maybe(7), Maybe(65535)),
                                             std::tuple(AtEnd::Hold, Maybe(65535), Maybe(65535)),
                                             std::tuple(AtEnd::Stop, Maybe(), Maybe())}) {
    ListSignal signal(list.readings, atEnd);
    for (const Maybe& next : {Maybe(7), Maybe(65535), third, fourth})
      EXPECT_EQ(signal.next(), next);
  }
  for (const auto& [text, error] :
       {std::pair("1\n2x\n", "line 2"), std::pair("1\n\n65536", "line 3"),
        std::pair("-1", "line 1"), std::pair("1.5", "line 1"), std::pair("1,2", "line 1"),
        std::pair("# none\n", "no readings"), std::pair("", "no readings")}) {
    EXPECT_NE(parseReadings(text).error.find(error), std::string::npos) << text;
  }
  EXPECT_NE(makeSignal({SignalKind::List, {}, "/nowhere.csv"}, 1, AtEnd::Hold).error, "");
}

}  // namespace
}  // namespace qv3::metersim
