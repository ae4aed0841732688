#include "recording/samplerecord.h"

#include <gtest/gtest.h>

#include <random>

#include "recording/recordbuffer.h"
#include "recording/sessionfile.h"

namespace qv3 {
namespace {

std::string hexOf(const RecordBytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", static_cast<unsigned>(byte));
    text += digits;
  }
  return text;
}

/// The bytes are a contract with every file ever written.
TEST(SampleRecord, BytesArePinned) {
  SampleRecord record;
  record.Time = 0x04030201;
  record.Needle = static_cast<std::int16_t>(0x8005);
  record.NeedleShown = -2503;
  record.BdTenths = 0x0706;
  record.BasePosition = 245;
  record.KnobPosition = 63;
  record.Flags = packFlags(Lamp::Lag, true, true, 3);
  record.setTag(0x0102);
  record.PacketType = 'P';
  EXPECT_EQ(hexOf(encode(record)), "01020304058039F60607F53F6F00020100005450");
  EXPECT_EQ(record.reading(), 0x8005);
}

TEST(SampleRecord, AnyBytesSurviveDecodingAndEncoding) {
  std::mt19937 random{7};
  for (int n = 0; n < 1000; ++n) {
    RecordBytes bytes;
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    EXPECT_EQ(encode(decode(bytes)), bytes);
  }
}

TEST(SampleRecord, FlagsHoldLampFreezeBdAndDial) {
  struct Row {
    Lamp lamp;
    bool frozen, bd;
    int dial;
    int flags;
  };
  for (const Row& row :
       {Row{Lamp::Off, false, false, 0, 0x00}, Row{Lamp::Set, false, false, 1, 0x21},
        Row{Lamp::BodyMotion, true, false, 2, 0x46}, Row{Lamp::Lag, true, true, 7, 0xEF},
        Row{Lamp::Off, false, true, 8, 0x08}}) {
    EXPECT_EQ(packFlags(row.lamp, row.frozen, row.bd, row.dial), row.flags);
  }
}

struct Header : testing::Test {
  RecordBuffer records;
  SessionStart start{86399, 6210};

  Header() {
    SampleRecord record;
    record.PacketType = 'P';
    record.setTag(0xAABB);
    for (int n = 0; n < 3; ++n) records.append(record);
  }
  std::string tail(std::size_t number, const HeaderSettings& header) {
    return hexOf(fileRecord(records, number, start, header)).substr(28);
  }
};

TEST_F(Header, LiesOverTheTagsOfTheFirstTwoSamples) {
  EXPECT_EQ(tail(1, {true, 2, 1}), "0201517F4350");
  EXPECT_EQ(tail(2, {true, 2, 1}), "01AA18424450") << "byte 15 keeps its sample value";
  EXPECT_EQ(tail(3, {true, 2, 1}), "BBAA00005450");
  EXPECT_EQ(records.at(1).Mark, 'T') << "the buffer keeps its samples";
}

TEST_F(Header, IsLeftOutWithoutTimeAndDate) {
  EXPECT_EQ(tail(1, {false, 2, 1}), "BBAA00005450");
  EXPECT_EQ(fileBytes(records, std::nullopt, {}).size(), 60U);
  EXPECT_EQ(fileBytes(records, std::nullopt, {})[18], 'T');
}

}  // namespace
}  // namespace qv3
