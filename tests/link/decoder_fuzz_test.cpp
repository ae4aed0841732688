#include <gtest/gtest.h>

#include <random>

#include "tests/link/decoderrig.h"

namespace qv3 {
namespace {

constexpr int kFrames = 1'000'000;

/// Frames as a bad line delivers them: cut short, doubled, run together, bits flipped, or noise.
class BadLine {
 public:
  std::string next() {
    std::string frame = goodFrame();
    switch (pick(8)) {
      case 0:
        return frame.substr(0, pick(frame.size() + 1));
      case 1:
        return frame + frame;
      case 2:
        frame.pop_back();
        return frame;
      case 3:
        frame[pick(frame.size())] = static_cast<char>(pick(256));
        return frame;
      case 4:
        return noise(pick(80));
      default:
        return frame;
    }
  }

  std::size_t pick(std::size_t count) { return m_random() % count; }

 private:
  std::string goodFrame() {
    constexpr std::string_view kTags = "PTOLRX";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string frame(1, kTags[pick(kTags.size())]);
    for (int n = 0; n < 4; ++n) frame += kDigits[pick(kDigits.size())];
    return frame + '\r';
  }

  std::string noise(std::size_t length) {
    std::string characters;
    for (std::size_t n = 0; n < length; ++n) characters += static_cast<char>(pick(256));
    return characters;
  }

  std::mt19937 m_random{20240607};
};

TEST(DecoderFuzz, ABadLineNeverLeavesTheLimits) {
  const std::string models[] = {"3A", "40", "2A", "31", "99", ""};
  BadLine line;
  int readings = 0;
  int errors = 0;
  for (const std::string& model : models) {
    test::DecoderRig rig(model);
    rig.settings.recording = true;
    std::string waiting;
    for (int frame = 0; frame < kFrames / 6 + 1; ++frame) {
      waiting += line.next();
      if (line.pick(3) == 0) continue;  // the program is late
      const std::string before = rig.state.ModeText;
      rig.event(waiting);
      waiting.clear();
      readings += rig.state.NewReading;
      errors += rig.state.ModeText != before;
      ASSERT_GE(rig.state.Reading, 0);
      ASSERT_LE(rig.state.Reading, 65535);
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

TEST(DecoderFuzz, AFloodWhileNobodyReadsIsCutOff) {
  test::DecoderRig rig("3A");
  for (int n = 0; n < 10'000; ++n) rig.line.feed(std::string(1000, 'P'));
  EXPECT_LE(rig.port.waiting(), 4096U);
  EXPECT_GT(rig.port.waiting(), 50U);
  rig.event("P1A2B\r");
  EXPECT_EQ(rig.port.waiting(), 0U);
  rig.event("P1A2B\r");
  EXPECT_EQ(rig.state.Reading, 6699);
}

}  // namespace
}  // namespace qv3
