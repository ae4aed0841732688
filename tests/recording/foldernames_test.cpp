#include "recording/foldernames.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

TEST(FolderNames, CompanionsByExactNameThenIgnoringCase) {
  const FileNames names = {"TAKE.WAV", "take.wav", "Take.Wav", "Take.mp3", "Takes.wav", "b.wav"};
  EXPECT_EQ(findCompanion(names, "take", ".wav"), "take.wav");
  EXPECT_EQ(findCompanion(names, "Take", ".wav"), "TAKE.WAV");
  EXPECT_EQ(findCompanion(names, "TAKE", ".mp3"), "Take.mp3");
  EXPECT_EQ(findCompanion(names, "b", ".mp3"), std::nullopt);
}

TEST(FolderNames, ASoundOfAnotherRecordingIsNotReplaced) {
  struct Row {
    FileNames there;
    FileNames replaced;
  };
  const std::vector<Row> rows = {
      {{"a.qvd", "a.txt", "b.qvd", "a.qvd~"}, {"a.qvd"}},
      {{"a.mp3", "a.wav"}, {"a.wav", "a.mp3"}},
      {{"a.WAV"}, {"a.WAV"}},
      {{"A.wav"}, {"A.wav"}},
      {{"A.qvd", "A.wav"}, {}},
      {{"A.qvd", "a.wav", "A.wav"}, {"a.wav"}},
  };
  for (const Row& row : rows) EXPECT_EQ(replacedFiles(row.there, "a"), row.replaced);
}

}  // namespace
}  // namespace qv3
