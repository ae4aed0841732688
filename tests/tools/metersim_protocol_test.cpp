#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tools/metersim/core/meter.h"
#include "tools/metersim/core/options.h"
#include "tools/metersim/core/simulator.h"

namespace qv3::metersim {
namespace {

constexpr Nanos kFrame = std::chrono::milliseconds(20);

/// A simulator with a constant reading of 1A2B, its time, and all that it sent.
struct Bench {
  explicit Bench(std::vector<std::string> arguments = {}) {
    OptionsResult parsed = parseOptions(arguments);
    EXPECT_EQ(parsed.error, "");
    simulator = std::make_unique<Simulator>(parsed.options.simulator,
                                            std::make_unique<ConstantSignal>(0x1A2B));
    Effects effects;
    simulator->begin(now, effects);
    take(effects);
  }

  void take(Effects& effects) {
    for (const auto& chunk : effects.chunks) sent += chunk.characters;
    complaints.insert(complaints.end(), effects.complaints.begin(), effects.complaints.end());
  }
  void hear(std::string_view text) {
    Effects effects;
    simulator->hear(text, now, effects);
    take(effects);
  }
  void obey(std::string_view line) {
    Effects effects;
    const CommandResult result = parseCommand(line);
    ASSERT_TRUE(result.command) << line << ": " << result.error;
    simulator->obey(*result.command, now, effects);
    take(effects);
  }
  /// What is sent while so many frame periods pass, woken at each.
  std::string frames(int count) {
    sent.clear();
    for (int i = 0; i < count; ++i) {
      now += kFrame;
      wake();
    }
    return sent;
  }
  void wake() {
    Effects effects;
    simulator->advance(now, effects);
    take(effects);
  }

  std::unique_ptr<Simulator> simulator;
  Nanos now = std::chrono::hours(1);
  std::string sent;
  std::vector<std::string> complaints;
};

TEST(MeterSimProtocol, EachModelAnswersItsCommands) {
  struct Row {
    const char* model;
    const char* heard;
    const char* frame;  ///< the next frame; empty: it is silent
  };
  const std::vector<Row> rows{
      {"3A", "", ""},
      {"3A", "R\r", ""},
      {"3A", "U\r", ""},
      {"3A", "U\rR\r", "P1A2B\r"},
      {"3A", "U\rR\rO\rSR\r", "P1A2B\r"},
      {"3A", "U\rR\rQ\r", ""},
      {"3A", "U\rR\rQ\rR\r", ""},
      {"3A", "u\rr\r", ""},
      {"3A", "VU\rR\r", ""},
      {"3A", "\nU\rR\r", ""},
      {"3A", "U\rR", ""},
      {"40", "U\rR\r", "P1A2B\r"},
      {"40", "U\rR\rO\r", "O1A2B\r"},
      {"40", "U\rR\rO\rQ\rU\rR\r", "P1A2B\r"},
      {"2A", "U\rR\rO\r", "O1A2B\r"},
      {"31", "U\rR\r", "L1A2B\r"},
      {"31", "SR\rU\rR\r", "R1A2B\r"},
      {"31", "SR\rU\rR\rSL\r", "L1A2B\r"},
      {"31", "U\rR\rO\r", "L1A2B\r"},
      {"55", "U\rR\rO\rSL\r", "P1A2B\r"},
  };
  for (const Row& row : rows) {
    Bench bench({"--model", row.model});
    bench.hear(row.heard);
    EXPECT_EQ(bench.frames(1), row.frame) << row.model << " " << row.heard;
  }
}

TEST(MeterSimProtocol, IdentifiesItselfAlsoBetweenFramesAndInPieces) {
  Bench bench({"--model", "40", "--field2", "2.7", "--field3", "A,B"});
  bench.hear("V\r");
  EXPECT_EQ(bench.sent, "V,QV40,2.7,A,B\r");
  bench.hear("U\rR\r");
  bench.frames(1);
  bench.hear("V");
  EXPECT_EQ(bench.frames(1), "P1A2B\r");
  bench.hear("\rQ\r");
  EXPECT_EQ(bench.sent, "P1A2B\rV,QV40,2.7,A,B\r");

  for (const auto& [answer, sent] :
       {std::pair("", ""), std::pair("no\\x20meter\\r", "no meter\r")}) {
    Bench other({"--answer", answer});
    other.hear("V\r");
    EXPECT_EQ(other.sent, sent);
  }
}

TEST(MeterSimProtocol, RunTimeCommandsChangeTheLine) {
  struct Row {
    const char* model;
    const char* command;
    int frames;
    const char* sent;
  };
  const std::vector<Row> rows{
      {"3A", "press", 2, "T1A2B\rP1A2B\r"},
      {"31", "x 2", 3, "X0000\rX0000\rL1A2B\r"},
      {"3A", "dropcr 2", 3, "P1A2BP1A2BP1A2B\r"},
      {"3A", "burst 3", 2, ""},
      {"3A", "burst 3", 4, "P1A2B\rP1A2B\rP1A2B\rP1A2B\r"},
      {"3A", "stall 0.05", 3, "P1A2B\r"},
      {"3A", "stall", 50, ""},
      {"3A", "signal constant:255", 1, "P00FF\r"},
      {"3A", "hangup", 50, ""},
  };
  for (const Row& row : rows) {
    Bench bench({"--autostart", "--model", row.model});
    bench.obey(row.command);
    EXPECT_EQ(bench.frames(row.frames), row.sent) << row.command;
  }
  Bench bench;
  bench.obey("send a\\x00\\r");
  EXPECT_EQ(bench.sent, std::string("a\0\r", 3));
  bench.sent.clear();
  bench.obey("garbage 500");
  EXPECT_EQ(bench.sent.size(), 500U);
  EXPECT_EQ(bench.sent.find('\r'), std::string::npos);
}

TEST(MeterSimProtocol, AHungMeterHearsNothingAndSendsNoPastAfterwards) {
  Bench bench({"--autostart"});
  bench.obey("stall");
  bench.obey("press");
  bench.frames(100);
  bench.hear("V\rQ\r");
  EXPECT_EQ(bench.sent, "");
  bench.obey("resume");
  EXPECT_EQ(bench.frames(2), "T1A2B\rP1A2B\r");
}

TEST(MeterSimProtocol, AfterAHangUpTheMeterIsAsJustPluggedIn) {
  Bench bench;
  bench.hear("U\rR\r");
  bench.obey("hangup 0.1");
  EXPECT_FALSE(bench.simulator->lineUp());
  bench.frames(4);
  EXPECT_FALSE(bench.simulator->lineUp());
  bench.frames(1);
  EXPECT_TRUE(bench.simulator->lineUp());
  bench.hear("R\r");
  EXPECT_EQ(bench.frames(5), "");
  bench.hear("U\rR\r");
  EXPECT_EQ(bench.frames(1), "P1A2B\r");
  EXPECT_EQ(bench.simulator->hangUps(), 1);
}

TEST(MeterSimProtocol, OnlyModel3AHasASwitch) {
  Bench bench({"--autostart", "--model", "40"});
  bench.obey("press");
  EXPECT_EQ(bench.complaints.size(), 1U);
  EXPECT_EQ(bench.frames(1), "P1A2B\r");
}

TEST(MeterSimProtocol, TheTimetableStartsWithTheStream) {
  Bench bench({"--at", "0.1:press", "--every", "0.06:x 1", "--at=0.2:quit"});
  bench.frames(50);
  bench.hear("U\rR\r");
  EXPECT_EQ(bench.frames(8), "P1A2B\rP1A2B\rP1A2B\rX0000\rP1A2B\rT1A2B\rX0000\rP1A2B\r");
  EXPECT_FALSE(bench.simulator->finished());
  bench.frames(2);
  EXPECT_TRUE(bench.simulator->finished());
}

TEST(MeterSimProtocol, ALateWakeUpLosesNothingAStallDoesNotBurst) {
  struct Row {
    const char* catchUp;
    int late;  ///< periods
    std::size_t frames;
  };
  for (const Row& row : {Row{"2", 1, 1}, Row{"2", 2, 2}, Row{"2", 3, 1}, Row{"2", 5000, 1},
                         Row{"1", 2, 1}, Row{"all", 5000, 5000}}) {
    Bench bench({"--autostart", "--catch-up", row.catchUp});
    bench.sent.clear();
    bench.now += row.late * kFrame + kFrame / 2;
    bench.wake();
    EXPECT_EQ(bench.sent.size(), row.frames * 6) << row.catchUp << " " << row.late;
    bench.now += kFrame / 2;
    EXPECT_EQ(bench.simulator->due(), bench.now) << "the next frame is due on the old grid";
  }
}

TEST(MeterSimProtocol, ReadingsOfLostFramesAreGone) {
  OptionsResult parsed = parseOptions({"--autostart"});
  std::vector<std::uint16_t> readings{1, 2, 3, 4, 5};
  Simulator simulator(parsed.options.simulator,
                      std::make_unique<ListSignal>(readings, AtEnd::Hold));
  Effects effects;
  simulator.begin(Nanos(0), effects);
  simulator.advance(4 * kFrame, effects);
  simulator.advance(5 * kFrame, effects);
  ASSERT_EQ(effects.chunks.size(), 2U);
  EXPECT_EQ(effects.chunks[0].characters, "P0004\r");
  EXPECT_EQ(effects.chunks[1].characters, "P0005\r");
}

}  // namespace
}  // namespace qv3::metersim
