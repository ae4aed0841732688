#include <gtest/gtest.h>

#include <algorithm>

#include <ostream>

#include "tests/link/decoderrig.h"

namespace qv3 {
namespace {

using test::DecoderRig;
using test::kDialColour;
using test::kLagColour;
using test::kTextColour;

enum class Outcome { Reading, Hidden, Silent, Error };

struct FrameRow {
  const char* model;
  const char* frame;
  Outcome outcome;
  std::int32_t reading;  // -1: as it was
};

void PrintTo(const FrameRow& row, std::ostream* out) {
  *out << row.model << ' ' << row.frame;
}

class Frames : public testing::TestWithParam<FrameRow> {};

TEST_P(Frames, MeanWhatTheModelSays) {
  const FrameRow& row = GetParam();
  DecoderRig rig(row.model);
  rig.state.Reading = 4321;
  rig.state.NewReading = true;
  rig.event(std::string(row.frame) + '\r');
  EXPECT_EQ(rig.state.Reading, row.reading < 0 ? 4321 : row.reading);
  EXPECT_EQ(rig.state.NewReading, row.outcome == Outcome::Reading);
  const bool error = row.outcome == Outcome::Error;
  EXPECT_EQ(rig.state.ModeText, error ? "Input Error" : "Input OK");
  EXPECT_EQ(rig.decoder.GoodEvents, error ? 0 : 5);
  EXPECT_EQ(rig.state.LampColor, error ? kLagColour : kDialColour);
}

INSTANTIATE_TEST_SUITE_P(
    Models, Frames,
    testing::Values(
        FrameRow{"3A", "P1A2B", Outcome::Reading, 6699},
        FrameRow{"3A", "P0000", Outcome::Reading, 0},
        FrameRow{"3A", "PFFFF", Outcome::Reading, 65535},
        FrameRow{"3A", "P8000", Outcome::Reading, 32768},
        FrameRow{"3A", "Pff0a", Outcome::Reading, 65290},
        FrameRow{"3A", "T1A2B", Outcome::Reading, 6699}, FrameRow{"3A", "P1A2", Outcome::Error, -1},
        FrameRow{"3A", "P1A2B3", Outcome::Error, -1}, FrameRow{"3A", "P", Outcome::Error, -1},
        FrameRow{"3A", "O1A2B", Outcome::Error, -1}, FrameRow{"3A", "P1A2G", Outcome::Error, -1},
        FrameRow{"3A", "P-1A2", Outcome::Error, -1}, FrameRow{"3A", "P 1A2", Outcome::Error, -1},
        FrameRow{"3A", "P0x1A", Outcome::Error, -1}, FrameRow{"3A", "P+1A2", Outcome::Error, -1},
        FrameRow{"40", "P1A2B", Outcome::Reading, 6699},
        FrameRow{"40", "O1A2B3", Outcome::Reading, 6699},
        FrameRow{"40", "P1A2BP1A2C", Outcome::Reading, 6699},
        FrameRow{"40", "P1A2Bzz", Outcome::Reading, 6699},
        FrameRow{"40", "P1A2", Outcome::Error, -1}, FrameRow{"40", "T1A2B", Outcome::Error, -1},
        FrameRow{"40", "PZZZZ", Outcome::Error, -1},
        FrameRow{"2A", "O1A2B", Outcome::Reading, 6699},
        FrameRow{"2A", "L1A2B", Outcome::Error, -1},
        FrameRow{"31", "L1000", Outcome::Reading, 4375},  // 4374.528
        FrameRow{"31", "L007D", Outcome::Reading, 134},   // 133.5, the even one
        FrameRow{"31", "LF000", Outcome::Reading, 65535},
        FrameRow{"31", "R1A2B", Outcome::Reading, 6699},
        FrameRow{"31", "X0000", Outcome::Silent, -1}, FrameRow{"31", "XZZZZ", Outcome::Silent, -1},
        FrameRow{"31", "X000", Outcome::Error, -1}, FrameRow{"31", "PZZZZ", Outcome::Silent, -1},
        FrameRow{"31", "P1A2B3", Outcome::Error, -1}, FrameRow{"31", "L1A2G", Outcome::Error, -1},
        FrameRow{"31", "R1A2B3", Outcome::Error, -1}, FrameRow{"99", "P1A2B", Outcome::Silent, -1},
        FrameRow{"", "?", Outcome::Silent, -1}));

TEST(Decoder, OnlyTheLastFrameOfAnEventCounts) {
  DecoderRig rig("3A");
  rig.event("P1A2B\rP1A2C\r");
  EXPECT_EQ(rig.state.Reading, 6700);
  EXPECT_EQ(rig.decoder.GoodEvents, 5);
  rig.event("garbage\rP1A2B\r");
  EXPECT_EQ(rig.state.Reading, 6699) << "what came before the last frame is not looked at";
  rig.event("P1A2C\rgarbage\r");
  EXPECT_EQ(rig.state.Reading, 6699);
  EXPECT_EQ(rig.state.ModeText, "Input Error");
}

TEST(Decoder, AFrameMayBeSplitAnywhere) {
  const std::string frame = "P1A2B\r";
  for (std::size_t first = 0; first <= frame.size(); ++first) {
    for (std::size_t second = first; second <= frame.size(); ++second) {
      DecoderRig rig("3A");
      rig.event(frame.substr(0, first));
      rig.event(frame.substr(first, second - first));
      rig.event(frame.substr(second));
      rig.event("P1A2");
      EXPECT_EQ(rig.state.Reading, 6699) << first << " " << second;
      EXPECT_FALSE(rig.state.NewReading);
      EXPECT_EQ(rig.state.ModeText, "Input OK");
      rig.event("C\r");
      EXPECT_EQ(rig.state.Reading, 6700) << first << " " << second;
    }
  }
}

TEST(Decoder, AnEventWithoutAFrameChangesNothing) {
  DecoderRig rig("3A");
  rig.decoder.GoodEvents = 3;
  for (const char* characters : {"", "\r", "P1A", "2B\r\r"}) rig.event(characters);
  EXPECT_EQ(rig.decoder.GoodEvents, 3);
  EXPECT_EQ(rig.state.Reading, 0);
  EXPECT_EQ(rig.shown.recordTimes, 0);
  EXPECT_EQ(rig.shown.lamps + rig.shown.statuses, 0);
}

TEST(Decoder, MoreThanFiftyCharactersAreNotParsed) {
  const std::string eightFrames = "P0001\rP0002\rP0003\rP0004\rP0005\rP0006\rP0007\rP0008\r";
  DecoderRig rig("3A");
  rig.settings.LagLimit = 9;
  rig.event(eightFrames + "P1");  // 50
  EXPECT_EQ(rig.state.Reading, 8);
  EXPECT_EQ(rig.decoder.GoodEvents, 5);

  rig.event("000\r");
  EXPECT_EQ(rig.state.Reading, 0x1000);
  rig.event("P1");
  rig.event(eightFrames + "P1A");  // 51
  EXPECT_EQ(rig.state.Reading, 0x1000);
  EXPECT_EQ(rig.port.waiting(), 0U);
  EXPECT_EQ(rig.decoder.GoodEvents, 0);
  EXPECT_EQ(rig.state.LampColor, kLagColour);
  EXPECT_EQ(rig.state.ModeText, "Input OK");
  rig.event("P1A2B\r");
  EXPECT_EQ(rig.state.Reading, 6699) << "the carry went with what waited";
}

TEST(Decoder, AnOverflowLeavesNewReadingAsItWas) {
  const std::string flood(51, 'P');
  DecoderRig rig("3A");
  rig.event("P1A2B\r");
  rig.event(flood);
  EXPECT_TRUE(rig.state.NewReading);
  rig.event("P1");
  rig.event(flood);
  EXPECT_FALSE(rig.state.NewReading);
  EXPECT_EQ(rig.shown.lamps, 1) << "a lamp that is lit is not lit again";
}

TEST(Decoder, MoreFramesThanTheLimitLightTheLamp) {
  for (int limit = 1; limit <= 5; ++limit) {
    DecoderRig rig("3A");
    rig.settings.LagLimit = limit;
    std::string frames;
    for (int n = 0; n < limit; ++n) frames += "P1A2B\r";
    rig.event(frames);
    EXPECT_EQ(rig.state.LampColor, kDialColour) << limit;
    rig.event(frames + "P1A2C\r");
    EXPECT_EQ(rig.state.LampColor, kLagColour) << limit;
    EXPECT_EQ(rig.decoder.GoodEvents, 0) << limit;
    EXPECT_EQ(rig.state.Reading, 6700) << "the reading counts all the same";
    EXPECT_EQ(rig.state.ModeText, "Input OK");
  }
}

TEST(Decoder, TheFifthGoodEventEndsAnError) {
  for (const bool recording : {false, true}) {
    DecoderRig rig("3A");
    rig.settings.recording = recording;
    rig.event("bad\r");
    rig.events(4, "P1A2B\r");
    rig.event("P1");
    EXPECT_EQ(rig.state.ModeText, "Input Error");
    EXPECT_EQ(rig.state.ModeColor, kRed);
    EXPECT_EQ(rig.state.LampColor, kLagColour);
    rig.event("A2B\r");
    EXPECT_EQ(rig.state.ModeText, recording ? "Recording" : "Input OK");
    EXPECT_EQ(rig.state.ModeColor, kTextColour);
    EXPECT_EQ(rig.state.LampColor, kDialColour);
    EXPECT_EQ(rig.shown.statuses, 2);
    rig.events(10, "P1A2B\r");
    EXPECT_EQ(rig.shown.statuses, 2);
  }
}

TEST(Decoder, RecoveryPutsOutNothingButTheLagColour) {
  DecoderRig rig("3A");
  rig.event("bad\r");
  rig.state.LampColor = 12345;  // body motion
  rig.events(5, "P1A2B\r");
  EXPECT_EQ(rig.state.LampColor, 12345);
  EXPECT_EQ(rig.state.ModeText, "Input OK");
}

TEST(Decoder, EveryInputErrorLightsTheLampAndTheFirstWritesTheStatus) {
  DecoderRig rig("40");
  rig.events(3, "bad\r");
  EXPECT_EQ(rig.shown.lamps, 3);
  EXPECT_EQ(rig.shown.statuses, 1);
}

TEST(Decoder, ALostCarriageReturnIsAnErrorOnlyWhereTheLengthIsFixed) {
  DecoderRig fixed("3A");
  fixed.event("P1A2BP1A2C\r");
  EXPECT_EQ(fixed.state.ModeText, "Input Error");
  DecoderRig open("2A");
  open.event("P1A2BP1A2C\r");
  EXPECT_EQ(open.state.Reading, 6699);
}

TEST(Decoder, WhatFollowsABadFrameIsStillCarried) {
  DecoderRig rig("3A");
  rig.event("bad\rP1A");
  rig.event("2B\r");
  EXPECT_EQ(rig.state.Reading, 6699);
}

TEST(Decoder, ALineWithoutEndStaysTheSameFrame) {
  const struct {
    const char* model;
    std::int32_t reading;
    const char* status;
  } rows[] = {{"40", 6699, "Input OK"}, {"3A", 0, "Input Error"}, {"31", 0, "Input Error"}};
  for (const auto& row : rows) {
    DecoderRig rig(row.model);
    rig.event("P1A2B");
    rig.events(1000, "0123456789012345678901234567890123456789");
    rig.event("\r");
    EXPECT_EQ(rig.state.Reading, row.reading) << row.model;
    EXPECT_EQ(rig.state.ModeText, row.status) << row.model;
  }
}

TEST(Decoder, TheSwitchCountsWithBadDigitsAndNotWithABadLength) {
  DecoderRig rig("3A");
  rig.event("T1A2B\r");
  EXPECT_EQ(rig.shown.presses, 1);
  rig.event("TZZZZ\r");
  EXPECT_EQ(rig.shown.presses, 2);
  EXPECT_EQ(rig.state.ModeText, "Input Error");
  rig.event("T1A2\r");
  rig.event("P1A2B\r");
  EXPECT_EQ(rig.shown.presses, 2);
}

TEST(Decoder, SixFaultFramesShowAnErrorAndRemoteReadingsWearItOff) {
  DecoderRig rig("31");
  rig.events(5, "X0000\r");
  EXPECT_EQ(rig.state.ModeText, "Input OK");
  rig.event("X0000\r");
  EXPECT_EQ(rig.state.ModeText, "Input Error");
  EXPECT_EQ(rig.state.ModeColor, kRed);
  EXPECT_EQ(rig.state.LampColor, kDialColour) << "the lamp tells of lag and broken frames only";
  EXPECT_EQ(rig.decoder.ErrorFrames, 5);
  EXPECT_EQ(rig.decoder.GoodEvents, 0) << "five more are needed to clear it";
  for (int left = 4; left >= 0; --left) {
    rig.event("R1A2B\r");
    EXPECT_EQ(rig.decoder.ErrorFrames, left);
    EXPECT_FALSE(rig.state.NewReading);
    EXPECT_EQ(rig.state.Reading, 6699);
  }
  EXPECT_EQ(rig.state.ModeText, "Input OK");
  rig.event("R1A2C\r");
  EXPECT_TRUE(rig.state.NewReading);
  EXPECT_EQ(rig.shown.sensors, "RRRRRR");
}

TEST(Decoder, LocalReadingsShowAtOnceAndLeaveTheFaultsCounted) {
  DecoderRig rig("31");
  rig.events(3, "X0000\r");
  rig.event("L1000\r");
  EXPECT_TRUE(rig.state.NewReading);
  EXPECT_EQ(rig.decoder.ErrorFrames, 3);
  EXPECT_EQ(rig.shown.sensors, "L");
}

TEST(Decoder, FaultFramesThatGoOnKeepTheErrorUpButForItsFifthEvents) {
  DecoderRig rig("31");
  rig.events(6, "X0000\r");
  rig.events(4, "X0000\r");
  EXPECT_EQ(rig.state.ModeText, "Input Error");
  rig.event("L1000\r");
  EXPECT_EQ(rig.state.ModeText, "Input OK") << "fault frames count as good events";
}

TEST(Decoder, WhatARecordingKeeps) {
  DecoderRig rig("40");
  rig.event("O1A2B\r");
  EXPECT_EQ(rig.state.RecordTag, 'P');
  EXPECT_EQ(rig.state.SampleCount, 0);
  rig.settings.recording = true;
  rig.event("P1A2B\rO1A2B\r");
  EXPECT_EQ(rig.state.RecordTag, 'O');
  EXPECT_EQ(rig.state.SampleCount, 2);
  rig.event("\r");
  EXPECT_EQ(rig.state.SampleCount, 3) << "empty frames are complete too";
  rig.event("P1A2\r");
  EXPECT_EQ(rig.state.SampleCount, 4);
  EXPECT_EQ(rig.state.RecordTag, 'O') << "a broken frame has no tag";
  rig.event("P1A2B\r");
  EXPECT_EQ(rig.state.RecordTag, 'P');
  EXPECT_EQ(rig.shown.recordTimes, 4);
}

TEST(Decoder, TheSyntheticReadingSwingsWhateverArrives) {
  DecoderRig rig("3A");
  rig.line.feed("P1A2B\rP1");
  rig.decoder.syntheticReading(rig.settings);
  EXPECT_EQ(rig.port.waiting(), 0U);
  EXPECT_EQ(rig.decoder.carried(), 0U);
  EXPECT_TRUE(rig.state.NewReading);
  EXPECT_EQ(rig.state.Reading, 32783) << "sin(0.015) of 1000 above the middle";
  EXPECT_EQ(rig.state.SampleCount, 0);
  rig.settings.recording = true;
  std::int32_t least = 65535;
  std::int32_t most = 0;
  for (int step = 2; step <= 419; ++step) {
    rig.decoder.syntheticReading(rig.settings);
    least = std::min(least, rig.state.Reading);
    most = std::max(most, rig.state.Reading);
  }
  EXPECT_EQ(least, 31768);
  EXPECT_EQ(most, 33768);
  EXPECT_EQ(rig.state.Reading, 32768) << "the 419th step begins the next turn";
  EXPECT_EQ(rig.state.SampleCount, 418);
  EXPECT_EQ(rig.state.RecordTag, 'P');
}

TEST(CommPort, AnEventIsDueWhenTheThresholdIsReachedOrRestored) {
  DecoderRig rig("3A");
  int due = 0;
  rig.port.setObserver({[&] { ++due; }, {}});
  rig.line.feed("P1A2B\r");
  EXPECT_FALSE(rig.port.eventDue()) << "threshold 0";
  rig.port.setReceiveThreshold(6);
  EXPECT_TRUE(rig.port.eventDue());
  rig.port.clearReceived();
  rig.line.feed("P1A2B");
  EXPECT_EQ(due, 0);
  rig.line.feed("\rP");
  EXPECT_EQ(due, 1);
  EXPECT_EQ(rig.port.waiting(), 7U);
}

TEST(CommPort, WhatWaitedAtACloseIsGone) {
  DecoderRig rig("3A");
  rig.line.feed("P1A");
  rig.port.Com_Close();
  EXPECT_TRUE(rig.port.Com_Open("/dev/meter").ok());
  EXPECT_EQ(rig.port.waiting(), 0U);
  rig.port.sendCommand("Q");
  EXPECT_EQ(rig.log.back(), "send Q");
  rig.port.Com_Close();
  rig.port.sendCommand("Q");
  EXPECT_EQ(rig.log.back(), "close");
}

}  // namespace
}  // namespace qv3
