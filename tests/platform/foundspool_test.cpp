#include "platform/disk/foundspool.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <fstream>

#include "recording/sound/disksoundfiles.h"
#include "recording/sound/spool.h"
#include "recording/sound/wavlayout.h"

namespace qv3 {
namespace {

constexpr std::size_t kLeadIn = 44100;

class FoundSpool : public testing::Test {
 protected:
  FoundSpool() {
    for (int n = 0; n < 10; ++n) {  // 200 ms, which take 8820 bytes
      SampleRecord record;
      record.Time = n * 20;
      m_records.append(record);
    }
  }

  /// As a program leaves it that is killed `size` bytes after it began to record.
  void record(std::size_t size, bool cut) {
    std::vector<std::uint8_t> sound(size, 'l');
    if (size > kLeadIn) std::fill(sound.begin() + kLeadIn, sound.end(), std::uint8_t{'s'});
    Spool spool(m_path, DiskSoundFiles().create(m_path), {22050, 1, 16, 44100, 2});
    spool.write(0, sound);
    if (cut) spool.remove(0, kLeadIn);
  }

  QTemporaryDir m_folder;
  std::string m_path = m_folder.filePath("a.wav").toStdString();
  RecordBuffer m_records;
};

TEST_F(FoundSpool, LosesItsLeadInAndLastsAsLongAsTheRecords) {
  struct Row {
    std::size_t recorded;
    bool cut;
    std::size_t sound;    ///< bytes kept
    std::size_t silence;  ///< bytes added
  };
  for (const Row& row : {Row{kLeadIn + 9000, false, 9000, 0}, Row{kLeadIn + 9000, true, 9000, 0},
                         Row{kLeadIn + 101, false, 100, 8720}, Row{kLeadIn + 100, true, 100, 8720},
                         Row{kLeadIn, false, 0, 8820}, Row{500, false, 0, 8820}}) {
    std::remove(m_path.c_str());
    record(row.recorded, row.cut);
    const TakeSound sound = mendFoundSpool(m_path, m_records);
    EXPECT_EQ(sound.length, row.sound + row.silence) << row.recorded;
    EXPECT_EQ(mendFoundSpool(m_path, m_records), sound) << "once is enough";

    const auto file = DiskSoundFiles().open(m_path);
    const auto layout = readWavLayout(*file);
    ASSERT_TRUE(layout);
    EXPECT_EQ(layout->dataOffset, sound.offset);
    EXPECT_EQ(layout->dataSize, sound.length);
    std::vector<std::uint8_t> bytes(sound.length);
    ASSERT_EQ(file->readAt(sound.offset, bytes), sound.length);
    std::vector<std::uint8_t> expected(row.sound, 's');
    expected.resize(sound.length);
    EXPECT_EQ(bytes, expected) << row.recorded;
  }
}

TEST_F(FoundSpool, WhatIsNoSpoolIsLeftAloneAndHasNoLength) {
  const TakeSound nothing{TakeSound::Kind::Spool, m_path, 0, 0};
  EXPECT_EQ(mendFoundSpool(m_path, m_records), nothing);
  for (const std::string& text : {std::string(), std::string("RIFF"), std::string(100, 'x')}) {
    std::ofstream(m_path, std::ios::binary) << text;
    EXPECT_EQ(mendFoundSpool(m_path, m_records), nothing);
    EXPECT_EQ(std::ifstream(m_path).seekg(0, std::ios::end).tellg(), text.size());
  }
}

}  // namespace
}  // namespace qv3
