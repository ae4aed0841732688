#include "recording/naming.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

TEST(Naming, NamesAreFormedFromPrefixAndSuffix) {
  EXPECT_EQ(recordingName("Prefix_", 0, 1, "x"), "Prefix_001");
  EXPECT_EQ(recordingName("Prefix_", 0, 1234, "x"), "Prefix_1234");
  EXPECT_EQ(recordingName("Prefix_", 1, 1, "17-01-05__14.03.27"), "Prefix_17-01-05__14.03.27");
}

TEST(Naming, PrefixesThatSomeSystemRefusesAreRefused) {
  struct Row {
    std::string prefix;
    PrefixFault fault;
  };
  const Row rows[] = {
      {"", PrefixFault::None},
      {"Take_", PrefixFault::None},
      {"folder/Take é 日本", PrefixFault::None},
      {"a:b", PrefixFault::Character},
      {"a\tb", PrefixFault::Character},
      {"what?", PrefixFault::Character},
      {std::string(225, 'a'), PrefixFault::None},
      {std::string(226, 'a'), PrefixFault::Length},
      {std::string(255, 'a') + "/b/c", PrefixFault::None},
      {"b/" + std::string(256, 'a') + "/c", PrefixFault::Length},
  };
  for (const Row& row : rows) EXPECT_EQ(checkPrefix(row.prefix), row.fault) << row.prefix;
}

TEST(Naming, NumberedNamesSplitAtTheirLastThreeCharacters) {
  struct Row {
    const char *name, *prefix;
    int number;
  };
  for (const Row& row : {Row{"Take_007", "Take_", 7}, Row{"12", "12", 0}, Row{"007", "", 7},
                         Row{"Take_1000", "Take_1", 0}, Row{"session", "sess", 0},
                         Row{"Té12", "T", 0}}) {
    EXPECT_EQ(splitNumberedName(row.name).prefix, row.prefix);
    EXPECT_EQ(splitNumberedName(row.name).number, row.number);
  }
}

TEST(Naming, SkipsGrowWithTheSession) {
  for (const auto& [length, skip] :
       {std::pair{0, 10}, {599, 10}, {600, 15}, {1799, 15}, {1800, 30}, {3599, 30}, {3600, 60}}) {
    EXPECT_EQ(skipSeconds(length), skip) << length;
  }
}

TEST(Naming, DurationsAndExtensions) {
  EXPECT_EQ(formatDuration(0), "0:00:00");
  EXPECT_EQ(formatDuration(93839), "26:03:59");
  EXPECT_EQ(formatDuration(-3), "0:00:00");
  EXPECT_EQ(withExtension("a", ".qvd"), "a.qvd");
  EXPECT_EQ(withExtension("a.QVD", ".qvd"), "a.QVD");
  EXPECT_EQ(withExtension("qvd", ".qvd"), "qvd.qvd");
}

}  // namespace
}  // namespace qv3
