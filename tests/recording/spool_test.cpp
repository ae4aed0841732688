#include <gtest/gtest.h>

#include <numeric>

#include "recording/sound/pcmreader.h"
#include "recording/sound/spool.h"
#include "tests/support/soundrig.h"

namespace qv3::test {
namespace {

constexpr WaveFormat kFormat{22050, 1, 16, 44100, 2};

class SpoolTest : public testing::Test {
 protected:
  Bytes counted(std::size_t count, std::uint8_t first = 0) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
  }
  const Bytes& file() { return *m_files.contents.at("/s/a"); }
  std::optional<WavLayout> layout() { return readWavLayout(*m_files.open("/s/a")); }
  Bytes sound() {
    const auto read = layout();
    if (!read) return {};
    const auto begin = file().begin() + static_cast<std::ptrdiff_t>(read->dataOffset);
    return {begin, begin + static_cast<std::ptrdiff_t>(read->dataSize)};
  }

  MemorySoundFiles m_files;
  Spool m_spool{"/s/a", m_files.create("/s/a"), kFormat};
};

TEST_F(SpoolTest, IsAWavFileFromTheStart) {
  const Bytes empty = {'R', 'I', 'F',  'F',  44, 0,   0,   0,   'W', 'A', 'V', 'E',  'f',
                       'm', 't', ' ',  16,   0,  0,   0,   1,   0,   1,   0,   0x22, 0x56,
                       0,   0,   0x44, 0xAC, 0,  0,   2,   0,   16,  0,   'q', 'v',  '3',
                       's', 0,   0,    0,    0,  'd', 'a', 't', 'a', 0,   0,   0,    0};
  EXPECT_EQ(file(), empty);
}

TEST_F(SpoolTest, ReadersGoByTheLengthNotByTheHeader) {
  m_spool.write(0, counted(1000));
  EXPECT_EQ(file()[48], 0) << "sizes are not rewritten for so little";
  EXPECT_EQ(sound(), counted(1000));
  m_spool.write(1000, Bytes(44100));
  EXPECT_EQ((Bytes{file()[48], file()[49], file()[50], file()[51]}), (Bytes{0x2C, 0xB0, 0, 0}));
}

TEST_F(SpoolTest, SilenceFillsGapsAndGivesWayToWhatComesLate) {
  m_spool.write(6, counted(4, 1));
  m_spool.extendTo(14);
  EXPECT_EQ(sound(), (Bytes{0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 0, 0, 0, 0}));
  m_spool.write(10, counted(2, 9));
  EXPECT_EQ(sound(), (Bytes{0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 9, 10, 0, 0}));
  EXPECT_EQ(m_spool.end(), 14U);
}

TEST_F(SpoolTest, TheFrontIsCutInPlace) {
  m_spool.write(0, counted(100));
  const std::size_t size = file().size();
  m_spool.remove(0, 40);
  EXPECT_EQ(file().size(), size);
  EXPECT_EQ(sound(), counted(60, 40));
  EXPECT_EQ(m_spool.where(), (SpoolPlace{"/s/a", 52 + 40, 60}));
  m_spool.remove(40, 50);
  EXPECT_EQ(sound(), counted(50, 50));
  m_spool.write(100, counted(4, 100));
  EXPECT_EQ(sound(), counted(54, 50)) << "places do not move";
}

TEST_F(SpoolTest, AnythingElseIsMovedTogether) {
  m_spool.write(0, counted(100));
  m_spool.remove(0, 4);  // too short to become a chunk
  EXPECT_EQ(sound(), counted(96, 4));
  m_spool.remove(90, 96);
  EXPECT_EQ(sound(), counted(90, 4));
  Bytes expected = counted(90, 4);
  expected.erase(expected.begin() + 10, expected.begin() + 20);
  m_spool.remove(10, 20);
  EXPECT_EQ(sound(), expected);
}

/// Wherever the disk is full, or the program is killed, the file reads well.
TEST(SpoolFailure, AtEveryByteLeavesAFileThatReads) {
  for (std::uint64_t room = 52; room < 300; ++room) {
    MemorySoundFiles files;
    files.room = room;
    Spool spool("/s/a", files.create("/s/a"), kFormat);
    for (std::uint64_t place = 0; place < 240; place += 20) spool.write(place, Bytes(20, 1));
    spool.extendTo(250);
    spool.remove(0, 40);
    EXPECT_EQ(spool.failure().empty(), room >= 52 + 250) << room;
    EXPECT_EQ(spool.end(), 250U);
    const auto layout = readWavLayout(*files.open("/s/a"));
    ASSERT_TRUE(layout) << room;
    EXPECT_TRUE(layout->isSpool);
    EXPECT_LE(layout->dataOffset + layout->dataSize, files.contents.at("/s/a")->size());
  }
}

TEST(PcmWidths, SixteenBitSamplesSurviveAllOfThem) {
  const std::vector<std::int16_t> samples = {0, 256, -256, 32512, -32768};
  for (const std::uint32_t bits : {8U, 16U, 24U, 32U}) {
    MemorySoundFiles files;
    Bytes bytes;
    appendPcm(samples, bits, bytes);
    files.add("/s/a", bytes);
    PcmReader reader(files.open("/s/a"), 0, {22050, 1, bits, 0, 0}, 5);
    std::vector<std::int16_t> read(7, 1);
    reader.read(0, read);
    EXPECT_EQ(std::vector<std::int16_t>(read.begin(), read.begin() + 5), samples) << bits;
    EXPECT_EQ(read[5], 0) << "silence behind the end";
  }
}

}  // namespace
}  // namespace qv3::test
