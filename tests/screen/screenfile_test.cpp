#include "tools/screen/screenfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace qv3 {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kHeader = 104;
constexpr std::size_t kColours = 2;
constexpr std::size_t kOffset = kHeader + 12 * kColours;
constexpr std::size_t kStride = 16;

void setWord(Bytes& file, std::size_t word, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) {
    file[4 * word + i] = static_cast<std::uint8_t>(value >> (8 * (3 - i)));
  }
}

/// A window dump of 3 by 2 pixels with four bytes of padding in the header and in each row; every
/// byte of the picture holds its own index.
Bytes windowDump() {
  Bytes file(kOffset + 2 * kStride);
  setWord(file, 0, kHeader);
  setWord(file, 1, 7);   // version
  setWord(file, 2, 2);   // whole pixels
  setWord(file, 3, 24);  // depth
  setWord(file, 4, 3);
  setWord(file, 5, 2);
  setWord(file, 11, 32);
  setWord(file, 12, kStride);
  setWord(file, 19, kColours);
  for (std::size_t i = 0; i < 2 * kStride; ++i) file[kOffset + i] = static_cast<std::uint8_t>(i);
  return file;
}

TEST(ScreenLayout, TellsWhereThePictureIsAndRefusesTruncations) {
  const Bytes whole = windowDump();
  const auto layout = readScreenLayout(whole);
  ASSERT_TRUE(layout);
  EXPECT_EQ(layout->width, 3);
  EXPECT_EQ(layout->height, 2);
  EXPECT_EQ(layout->offset, kOffset);
  EXPECT_EQ(layout->stride, kStride);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(readScreenLayout({whole.data(), size})) << size;
  }
}

TEST(ScreenLayout, RefusesPicturesOfAnotherKind) {
  struct Row {
    const char* what;
    std::size_t word;
    std::uint32_t value;
  };
  for (const Row& row : {Row{"version", 1, 6}, Row{"planes", 2, 1}, Row{"no columns", 4, 0},
                         Row{"wider than its rows", 4, 5}, Row{"no rows", 5, 0},
                         Row{"too many rows", 5, 0xFFFFFFFF}, Row{"highest byte first", 7, 1},
                         Row{"16 bits a pixel", 11, 16}, Row{"colours beyond the end", 19, 1000}}) {
    Bytes file = windowDump();
    setWord(file, row.word, row.value);
    EXPECT_FALSE(readScreenLayout(file)) << row.what;
  }
}

/// Into the file that there is, as a display does.
void write(const std::string& path, const Bytes& bytes) {
  std::fstream file(path, std::ios::binary | std::ios::out | std::ios::in);
  if (!file.is_open()) file.open(path, std::ios::binary | std::ios::out);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

TEST(ScreenFile, ShowsWhatTheDisplayDrawsLaterOrSaysWhatIsWrong) {
  const std::string path = testing::TempDir() + "screen-file";
  std::filesystem::remove(path);
  std::string error;
  EXPECT_FALSE(ScreenFile::open(path, error));
  EXPECT_EQ(error, "cannot read " + path);
  write(path, Bytes(kOffset));
  EXPECT_FALSE(ScreenFile::open(path, error));
  EXPECT_EQ(error, path + " is no picture of a virtual display with 24 bits of colour");
  Bytes file = windowDump();
  write(path, file);
  const auto screen = ScreenFile::open(path, error);
  ASSERT_TRUE(screen) << error;
  EXPECT_EQ(screen->rows(1, 1)[0], kStride);
  file[kOffset + kStride] = 200;
  write(path, file);
  EXPECT_EQ(screen->rows(1, 1)[0], 200);
  EXPECT_EQ(screen->picture().size(), 2 * kStride);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace qv3
