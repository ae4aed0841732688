#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

#include "link/streamdecoder.h"
#include "tests/support/fakeport.h"

namespace qv3 {
namespace {

constexpr Colour kLagColour = 0x20;
constexpr Colour kDialColour = 0x3000;
constexpr Colour kTextColour = 0x400000;

/// A decoder at an open port, with a healthy link. Does what the instrument does with what the
/// decoder asks for, and counts it.
struct DecoderRig : LinkEvents {
  explicit DecoderRig(const std::string& model) {
    state.MeterVersion = model;
    state.ModeText = "Input OK";
    state.ModeColor = kTextColour;
    state.LampColor = kDialColour;
    state.Reading = 4321;
    state.NewReading = true;
    line.nodes["/dev/meter"] = {};
    (void)port.Com_Open("/dev/meter");
    decoder.GoodEvents = 5;
  }

  void Update_LED(Colour colour) override {
    state.LampColor = colour;
    ++lamps;
  }
  void showStatus(const std::string& text, Colour colour) override {
    state.ModeText = text;
    state.ModeColor = colour;
    ++statuses;
  }
  void updateRecordTime() override { ++recordTimes; }
  void switchPressed() override { ++presses; }
  void sensorReported(bool isRemote) override { sensors += isRemote ? 'R' : 'L'; }

  /// "P1A|4:2_." is an event that brings "P1A" and four that bring "2", a blank and a carriage
  /// return.
  void events(std::string script) {
    std::replace(script.begin(), script.end(), '.', '\r');
    std::replace(script.begin(), script.end(), '_', ' ');
    std::istringstream events(script);
    for (std::string event; std::getline(events, event, '|');) {
      const std::size_t colon = event.find(':');
      const int times = colon == std::string::npos ? 1 : std::stoi(event);
      for (int n = 0; n < times; ++n) {
        line.feed(event.substr(colon + 1));
        decoder.Com_Input_Parse(settings);
      }
    }
  }

  /// Reading (* if it is new), status, good events, lamp and error frames.
  std::string summary() const {
    const Colour wanted = state.ModeText == "Input Error" ? kRed : kTextColour;
    std::string text = std::to_string(state.Reading) + (state.NewReading ? "* " : " ");
    text += state.ModeText + (state.ModeColor == wanted ? "" : " in a wrong colour");
    text += ' ' + std::to_string(decoder.GoodEvents);
    text += state.LampColor == kDialColour ? "" : state.LampColor == kLagColour ? " lag" : " other";
    return text + (decoder.ErrorFrames > 0 ? " x" + std::to_string(decoder.ErrorFrames) : "");
  }

  std::vector<std::string> log;
  test::FakePort line{log};
  CommPort port{line};
  MeterState state;
  LinkSettings settings{2, kLagColour, kDialColour, kTextColour, false};
  StreamDecoder decoder{state, port, *this};
  int lamps = 0;
  int statuses = 0;
  int recordTimes = 0;
  int presses = 0;
  std::string sensors;
};

const std::string kEight = "P0001.P0002.P0003.P0004.P0005.P0006.P0007.P0008.";
const std::string kFlood(51, 'P');
const std::string kEndless = "1000:0123456789012345678901234567890123456789";

TEST(Decoder, EventsLeadToReadingsAndStatus) {
  const struct {
    const char* after;
    std::string scripts;  ///< each the model and its events
  } rows[] = {
      // A lost carriage return is an error only where the length is fixed. What came before the
      // last frame of an event is not looked at. The fifth good event ends an error. A line without
      // end stays the same frame.
      {"6699* Input OK 5",
       "3A/P1A2B. 3A/T1A2B. 40/O1A2B3. 40/P1A2Bzz. 2A/O1A2B. 31/R1A2B. 2A/P1A2BP1A2C. "
       "3A/garbage.P1A2B. 3A/bad.|4:P1A2B.|P1|A2B. 40/P1A2B|" +
           kEndless + "|."},
      {"4321 Input Error 0 lag",
       "3A/P1A2. 3A/P1A2B3. 3A/P. 3A/O1A2B. 3A/P1A2G. 3A/P-1A2. 3A/P_1A2. 3A/P0x1A. 3A/P+1A2. "
       "40/P1A2. 40/T1A2B. 40/PZZZZ. 2A/L1A2B. 31/X000. 31/P1A2B3. 31/L1A2G. 31/R1A2B3. "
       "3A/P1A2BP1A2C. 3A/P1A2C.garbage. 3A/P1A2B|" +
           kEndless + "|. 31/P1A2B|" + kEndless + "|."},
      {"4321 Input OK 5", "31/PZZZZ. 99/P1A2B. /?."},
      {"0* Input OK 5", "3A/P0000."},
      {"65535* Input OK 5", "3A/PFFFF. 31/LF000."},
      {"32768* Input OK 5", "3A/P8000."},
      {"65290* Input OK 5", "3A/Pff0a."},
      {"4375* Input OK 5", "31/L1000."},  // 4374.528
      {"134* Input OK 5", "31/L007D."},   // 133.5, the even one
      {"6700* Input OK 5", "3A/P1A2B.P1A2C. 31/6:X0000.|5:R1A2B.|R1A2C."},
      // What follows a bad frame is carried all the same.
      {"6699* Input Error 1 lag", "3A/bad.P1A|2B."},
      // An event without a frame, or with an empty one last, changes nothing.
      {"6699 Input Error 3 lag", "3A/bad.|3:P1A2B.||.|P1A|2B.."},
      {"6699 Input Error 4 lag", "3A/bad.|4:P1A2B.|P1"},
      // More than 50 characters are not parsed, the carry goes with them, and `NewReading` stays.
      {"4096* Input OK 1 lag", "3A/" + kEight + "P1|000."},
      {"6699* Input OK 1 lag", "3A/P1|" + kEight + "P1A|P1A2B."},
      {"4321* Input OK 0 lag", "3A/" + kFlood},
      {"4321 Input OK 0 lag", "3A/P1|" + kFlood},
      // Fault frames count as good events; the sixth shows an error, which takes five more to
      // clear. Remote readings wear the count off before they show, local ones leave it.
      {"4321 Input OK 5 x1", "31/XZZZZ."},
      {"4321 Input OK 5 x5", "31/5:X0000."},
      {"4321 Input Error 0 x5", "31/6:X0000."},
      {"4321 Input Error 4 x5", "31/10:X0000."},
      {"4375* Input OK 5 x5", "31/10:X0000.|L1000."},
      {"6699 Input Error 1 x4", "31/6:X0000.|R1A2B."},
      {"6699 Input OK 5", "31/6:X0000.|5:R1A2B."},
      {"4375* Input OK 5 x3", "31/3:X0000.|L1000."}};
  for (const auto& row : rows) {
    std::istringstream scripts(row.scripts);
    for (std::string script; scripts >> script;) {
      DecoderRig rig(script.substr(0, script.find('/')));
      rig.events(script.substr(script.find('/') + 1));
      EXPECT_EQ(rig.summary(), row.after) << script;
      EXPECT_EQ(rig.port.waiting(), 0U) << script;
    }
  }
}

TEST(Decoder, LampAndStatusAreWrittenNoOftenerThanTheyChange) {
  DecoderRig rig("3A");
  rig.events(kFlood + '|' + kFlood);
  EXPECT_EQ(rig.lamps, 1) << "lit already";
  rig.events("3:bad.");
  EXPECT_EQ(rig.lamps, 4) << "every input error lights it";
  EXPECT_EQ(rig.statuses, 1);
  rig.settings.recording = true;
  rig.state.LampColor = 12345;  // body motion
  rig.events("15:P1A2B.");
  EXPECT_EQ(rig.state.LampColor, 12345) << "only the lag colour is put out";
  EXPECT_EQ(rig.state.ModeText, "Recording");
  EXPECT_EQ(rig.state.ModeColor, kTextColour);
  EXPECT_EQ(rig.statuses, 2);
}

TEST(Decoder, TheSwitchCountsWithBadDigitsAndNotWithABadLength) {
  for (const auto& [event, presses] :
       {std::pair("T1A2B.", 1), std::pair("TZZZZ.", 1), std::pair("T1A2.", 0)}) {
    DecoderRig rig("3A");
    rig.events(event);
    EXPECT_EQ(rig.presses, presses) << event;
  }
  DecoderRig rig("31");
  rig.events("T1A2B.|R1A2B.|X0000.|R1A2B.|L1A2B.");
  EXPECT_EQ(rig.presses, 0) << "other models have no switch";
  EXPECT_EQ(rig.sensors, "RRL") << "also of a reading that is not shown";
}

TEST(Decoder, WhatARecordingKeeps) {
  DecoderRig rig("40");
  rig.events("O1A2B.");
  EXPECT_EQ(rig.state.RecordTag, 'P');
  EXPECT_EQ(rig.state.SampleCount, 0);
  rig.settings.recording = true;
  for (const auto& [event, samples, tag] :
       {std::tuple("P1A2B.O1A2B.", 2, 'O'), std::tuple(".", 3, 'O'), std::tuple("P1A2.", 4, 'O'),
        std::tuple("P1A2B.", 5, 'P')}) {
    rig.events(event);
    EXPECT_EQ(rig.state.SampleCount, samples) << event;
    EXPECT_EQ(rig.state.RecordTag, tag) << event;
  }
  EXPECT_EQ(rig.recordTimes, 4) << "not for the empty frame";
}

TEST(Decoder, TheSyntheticReadingSwingsWhateverArrives) {
  DecoderRig rig("3A");
  rig.settings.recording = true;
  rig.events("P1");
  rig.line.feed("A2B\r");
  std::vector<std::int32_t> readings(419);
  for (std::int32_t& reading : readings) {
    rig.decoder.syntheticReading(rig.settings);
    reading = rig.state.Reading;
  }
  EXPECT_EQ(rig.port.waiting() + rig.decoder.carried(), 0U);
  EXPECT_EQ(readings.front(), 32783) << "sin(0.015) of 1000 above the middle";
  EXPECT_EQ(readings.back(), 32768) << "the 419th step begins the next turn";
  EXPECT_EQ(*std::min_element(readings.begin(), readings.end()), 31768);
  EXPECT_EQ(*std::max_element(readings.begin(), readings.end()), 33768);
  EXPECT_EQ(rig.state.SampleCount, 419);
}

/// Frames as a bad line delivers them: cut short, doubled, run together, bits flipped, or noise.
class BadLine {
 public:
  std::string next() {
    std::string frame(1, "PTOLRX"[pick(6)]);
    for (int n = 0; n < 4; ++n) frame += "0123456789ABCDEF"[pick(16)];
    frame += '\r';
    switch (pick(8)) {
      case 0:
        return frame.substr(0, pick(frame.size() + 1));
      case 1:
        return frame + frame;
      case 2:
        return frame.substr(0, 5);
      case 3:
        frame[pick(frame.size())] = static_cast<char>(pick(256));
        return frame;
      case 4:
        frame.resize(pick(80));
        for (char& c : frame) c = static_cast<char>(pick(256));
        return frame;
      default:
        return frame;
    }
  }
  std::size_t pick(std::size_t count) { return m_random() % count; }

 private:
  std::mt19937 m_random{20240607};
};

TEST(Decoder, ABadLineNeverLeavesTheLimits) {
  BadLine line;
  int readings = 0;
  int errors = 0;
  for (const std::string model : {"3A", "40", "2A", "31", "99", ""}) {
    DecoderRig rig(model);
    rig.settings.recording = true;
    for (int frame = 0; frame < 170'000; ++frame) {
      rig.line.feed(line.next());
      if (line.pick(3) == 0) continue;  // the program is late
      const std::string before = rig.state.ModeText;
      rig.decoder.Com_Input_Parse(rig.settings);
      readings += rig.state.NewReading;
      errors += rig.state.ModeText != before;
      ASSERT_TRUE(rig.state.Reading >= 0 && rig.state.Reading <= 65535);
      ASSERT_LE(rig.decoder.carried(), 7U);
      ASSERT_EQ(rig.port.waiting(), 0U);
      ASSERT_TRUE(rig.decoder.GoodEvents >= 0 && rig.decoder.GoodEvents <= 5);
      ASSERT_TRUE(rig.decoder.ErrorFrames >= 0 && rig.decoder.ErrorFrames <= 5);
      ASSERT_TRUE(rig.state.RecordTag == 'P' || rig.state.RecordTag == 'O');
    }
  }
  EXPECT_GT(readings, 50'000) << "the line is not so bad that nothing gets through";
  EXPECT_GT(errors, 1'000);
}

TEST(CommPort, HasAnEventWhenTheThresholdIsReachedOrRestoredAndKeepsNoFlood) {
  DecoderRig rig("3A");
  int due = 0;
  rig.port.setObserver({[&] { ++due; }, {}});
  rig.line.feed("P1A2B\r");
  EXPECT_FALSE(rig.port.eventDue()) << "threshold 0";
  rig.port.setReceiveThreshold(6);
  EXPECT_TRUE(rig.port.eventDue());
  rig.port.Com_Close();
  rig.port.sendCommand("Q");
  EXPECT_EQ(rig.log.back(), "close") << "nothing is sent on a closed port";
  EXPECT_TRUE(rig.port.Com_Open("/dev/meter").ok());
  EXPECT_EQ(rig.port.waiting(), 0U) << "what waited at a close is gone";
  rig.line.feed("P1A2B");
  EXPECT_EQ(due, 0);
  rig.line.feed("\rP");
  EXPECT_EQ(due, 1);
  for (int n = 0; n < 10'000; ++n) rig.line.feed(std::string(1000, 'P'));
  EXPECT_GT(rig.port.waiting(), 50U);
  EXPECT_LE(rig.port.waiting(), 4096U);
}

}  // namespace
}  // namespace qv3
