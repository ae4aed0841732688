#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/metersim/core/backlog.h"
#include "tools/metersim/core/command.h"
#include "tools/metersim/core/framepacer.h"
#include "tools/metersim/core/help.h"
#include "tools/metersim/core/linesplitter.h"
#include "tools/metersim/core/options.h"

namespace qv3::metersim {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(MeterSimCommand, NumbersAndTextsArriveAndHaveTheirDefaults) {
  const auto parsed = [](std::string_view line) { return parseCommand(line).command.value(); };
  EXPECT_EQ(std::get<Garbage>(parsed("garbage")).count, 8);
  EXPECT_EQ(std::get<Garbage>(parsed(" garbage\t12 \r")).count, 12);
  EXPECT_EQ(std::get<DropReturns>(parsed("dropcr")).count, 1);
  EXPECT_EQ(std::get<ErrorFrames>(parsed("x 3")).count, 3);
  EXPECT_EQ(std::get<Stall>(parsed("stall 1.5")).time, milliseconds(1500));
  EXPECT_EQ(std::get<HangUp>(parsed("hangup")).time, std::nullopt);
  EXPECT_EQ(std::get<Fall>(parsed("fall 3000")).size, 3000);
  EXPECT_EQ(std::get<Send>(parsed("send P 1\\r\\x7f\\\\")).characters, "P 1\r\x7f\\");
  EXPECT_EQ(std::get<ChangeSignal>(parsed("signal sine:20000")).spec.numbers,
            (std::vector<double>{20000, 1000, 8}));
}

TEST(MeterSimCommand, BadLinesAreRefusedAndSilentOnesAreNot) {
  for (const char* line : {"jump",
                           "Garbage",
                           "garbage 0",
                           "garbage 1001",
                           "garbage 2.5",
                           "garbage two",
                           "garbage 1 2",
                           "burst -1",
                           "stall -1",
                           "stall 1e9",
                           "hangup nan",
                           "press 1",
                           "resume now",
                           "send",
                           "send \\q",
                           "send \\x4",
                           "fall 70000",
                           "signal",
                           "signal noise",
                           "signal constant:65536",
                           "signal constant:1:2",
                           "signal sine:1:2:0",
                           "signal csv:"}) {
    const CommandResult result = parseCommand(line);
    EXPECT_FALSE(result.command) << line;
    EXPECT_NE(result.error, "") << line;
  }
  EXPECT_NE(parseCommand("send " + std::string(kLongestCommand, 'x')).error, "");
  for (const char* line : {"", "  \r", "# press"}) {
    const CommandResult result = parseCommand(line);
    EXPECT_FALSE(result.command) << line;
    EXPECT_EQ(result.error, "") << line;
  }
}

TEST(MeterSimCommand, LinesComeInPiecesAndOverlongOnesStayRecognisable) {
  LineSplitter lines('\n', 4);
  EXPECT_EQ(lines.feed("ab"), std::vector<std::string>{});
  EXPECT_EQ(lines.feed("c\n\nd"), (std::vector<std::string>{"abc", ""}));
  EXPECT_EQ(lines.feed("efghijk\nab\n"), (std::vector<std::string>{"defgh", "ab"}));
}

TEST(MeterSimOptions, WrongOnesAreNamed) {
  const std::vector<std::vector<std::string>> wrong{
      {"--nonsense"},
      {"stray"},
      {"--model"},
      {"--model", "3a"},
      {"--model", "3AB"},
      {"--model", "3,"},
      {"--field2", "1,2"},
      {"--field3", "b"},
      {"--seed", "-1"},
      {"--rate-ppm", "200000"},
      {"--catch-up", "0"},
      {"--backlog", "0"},
      {"--link", ""},
      {"--at", "5"},
      {"--at", "5:jump"},
      {"--at", "5:# nothing"},
      {"--every", "0:press"},
      {"--signal", "sine:1:2:3:4"},
      {"--csv-end", "loop"},
      {"--autostart=1"},
      {"--tail", "\\r"},
      {"--answer", "\\z"},
  };
  for (const auto& arguments : wrong) {
    EXPECT_NE(parseOptions(arguments).error, "") << arguments.back();
  }
}

TEST(MeterSimOptions, TheHelpNamesAllThatCanBeTypedAndFitsATerminal) {
  const std::string help = helpText();
  for (const OptionHelp& option : optionHelp()) {
    EXPECT_NE(help.find("\n  " + option.usage), std::string::npos) << option.usage;
  }
  for (const char* word : {"garbage", "dropcr", "burst", "stall", "resume", "hangup", "return", "x",
                           "press", "send", "signal", "fall", "move", "quit"}) {
    EXPECT_NE(help.find("\n  " + std::string(word) + " "), std::string::npos) << word;
  }
  LineSplitter lines('\n', 1000);
  for (const std::string& line : lines.feed(help)) EXPECT_LE(line.size(), 80U) << line;
}

TEST(MeterSimPacer, FiftyASecondToTheNanosecondForADay) {
  for (const int ppm : {0, 100, -37, 100000}) {
    FramePacer pacer(ppm);
    pacer.start(Nanos(12345));
    const std::int64_t frames = 50LL * 86400;
    for (std::int64_t i = 0; i < frames; ++i) ASSERT_EQ(pacer.take(pacer.due()), 1);
    const double day = static_cast<double>((pacer.due() - Nanos(12345)).count()) / 1e9;
    const double expected = static_cast<double>(frames + 1) / 50 / (1 + ppm / 1e6);
    EXPECT_NEAR(day, expected, 2e-9) << ppm;
  }
}

TEST(MeterSimPacer, TakesNothingEarlyOrTwice) {
  FramePacer pacer;
  EXPECT_EQ(pacer.take(seconds(5)), 0);
  pacer.start(seconds(5));
  EXPECT_EQ(pacer.take(seconds(5) + milliseconds(20) - Nanos(1)), 0);
  EXPECT_EQ(pacer.take(seconds(5) + milliseconds(20)), 1);
  EXPECT_EQ(pacer.take(seconds(5) + milliseconds(20)), 0);
  EXPECT_EQ(pacer.take(seconds(6) + milliseconds(7)), 49);
  EXPECT_EQ(pacer.due(), seconds(6) + milliseconds(20));
}

TEST(MeterSimBacklog, OnlyWhatIsOldIsStale) {
  Backlog backlog(milliseconds(300));
  Nanos now{};
  std::size_t waiting = 0;
  for (int i = 0; i < 1000; ++i, now += milliseconds(20)) {
    const std::size_t stale = backlog.stale(waiting, now);
    waiting -= stale;
    backlog.wrote(6, now);
    waiting += 6;
    ASSERT_LE(waiting, 16U * 6) << "0.3 s of frames and the newest";
    ASSERT_TRUE(i >= 15 || stale == 0) << i;
  }
  EXPECT_EQ(backlog.stale(12, now), 0U);
  backlog.wrote(600, now);  // a burst is as fresh as a frame
  EXPECT_EQ(backlog.stale(612, now), 0U);
  EXPECT_EQ(backlog.stale(612, now + milliseconds(301)), 612U);
}

}  // namespace
}  // namespace qv3::metersim
