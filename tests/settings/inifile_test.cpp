#include "settings/inifile.h"

#include <gtest/gtest.h>

#include <random>

#include "settings/utf8.h"
#include "tests/support/memorystore.h"
#include "tests/support/vectors.h"

namespace qv3 {
namespace {

using namespace std::string_view_literals;

using nlohmann::json;

std::optional<std::string> bytesOrNull(const json& text) {
  if (text.is_null()) return std::nullopt;
  return test::bytesOf(text);
}

std::string readVector(const std::optional<std::string>& file, const json& input) {
  return readIni(file, bytesOrNull(input["section"]), bytesOrNull(input["key"]),
                 bytesOrNull(input["default"]).value_or(""), input["size"].get<std::size_t>());
}

void expectText(const std::string& text, const json& expected) {
  EXPECT_EQ(text, test::bytesOf(expected["text"]));
  EXPECT_EQ(text.size(), expected["ret"].get<std::size_t>());
}

void checkWrites(const json& input, const json& expected) {
  std::optional<std::string> file = bytesOrNull(input["file"]);
  json ok = json::array();
  for (const json& write : input["writes"]) {
    ok.push_back(writeIni(file, bytesOrNull(write[0]), bytesOrNull(write[1]), bytesOrNull(write[2]))
                     ? 1
                     : 0);
  }
  EXPECT_EQ(ok, expected["ok"]);
  EXPECT_EQ(file, bytesOrNull(expected["file"]));
  for (std::size_t i = 0; i < input.value("readback", json::array()).size(); ++i) {
    const json& names = input["readback"][i];
    expectText(readIni(file, bytesOrNull(names[0]), bytesOrNull(names[1]), "", 255),
               expected["readback"][i]);
  }
}

TEST(IniVectors, ReadAndWriteWhatTheySay) {
  for (const json& vector : test::readVectors("ini.jsonl")) {
    SCOPED_TRACE(vector.dump());
    const json& input = vector["input"];
    if (input["op"] == "read") {
      expectText(readVector(bytesOrNull(input["file"]), input), vector["expected"]);
    } else {
      ASSERT_EQ(input["op"], "write");
      checkWrites(input, vector["expected"]);
    }
  }
}

TEST(IniFile, NamesAreListed) {
  const std::optional<std::string> file =
      "lost=1\r\n[B]\r\nx=1\r\n;off=2\r\n x =3\r\nalone\r\n[ A ] ; note\r\n[B]\r\ny=1\r\n";
  EXPECT_EQ(readIni(file, std::nullopt, std::nullopt, "DEF"), std::string("B\0A\0B\0", 6));
  EXPECT_EQ(readIni(file, "b", std::nullopt, "DEF"), std::string("x\0x\0", 4));
  EXPECT_EQ(readIni(file, "A", std::nullopt, "DEF"), "");
  EXPECT_EQ(readIni(file, "C", std::nullopt, "DEF "), "DEF");
  EXPECT_EQ(readIni(std::nullopt, std::nullopt, std::nullopt, "DEF"), "DEF");
}

TEST(IniFile, ListThatDoesNotFitIsCutBeforeItsTwoZeros) {
  const std::optional<std::string> file = "[S]\nab=1\nc=2\n";
  const std::pair<std::size_t, std::string> kRows[] = {{6, std::string("ab\0c\0", 5)},
                                                       {5, std::string("ab\0", 3)},
                                                       {4, "ab"},
                                                       {2, ""},
                                                       {1, ""},
                                                       {0, ""}};
  for (const auto& [size, expected] : kRows) {
    EXPECT_EQ(readIni(file, "S", std::nullopt, "", size), expected) << size;
  }
}

TEST(IniFile, ByteOrderMarkIsSkippedAndKept) {
  std::optional<std::string> file = std::string(kUtf8Mark) + "[S]\r\nk=1\r\n";
  EXPECT_EQ(readIni(file, "S", "k", ""), "1");
  ASSERT_TRUE(writeIni(file, "S", "k", "2"));
  EXPECT_EQ(file, std::string(kUtf8Mark) + "[S]\r\nk=2\r\n");
  std::optional<std::string> empty = std::string(kUtf8Mark);
  ASSERT_TRUE(writeIni(empty, "S", "k", "2"));
  EXPECT_EQ(empty, file);
}

TEST(IniFile, WritesKeepTheRestOfTheFile) {
  using Text = std::optional<std::string_view>;
  const struct {
    const char* before;
    Text section, key, value;
    const char* after;
  } kRows[] = {
      {"[S]\na=1\n\n[T]\nb=1\n", "S", "k", "v", "[S]\na=1\nk=v\n\n[T]\nb=1\n"},
      {"[S]\na=1\n", "T", "k", "v", "[S]\na=1\n[T]\nk=v\n"},
      {"[S]\ra=1", "T", "k", "v", "[S]\ra=1\r[T]\rk=v\r"},
      {"[A]\n[S]", "S", "k", "v", "[A]\n[S]\nk=v\n"},
      {"[S]\r\n \t\x1a\r\n", "S", "k", "v", "[S]\r\nk=v\r\n \t\x1a\r\n"},
      {"[S]\r\nk=1", "S", "k", "v", "[S]\r\nk=v"},
      {"[S]\r\nk\r\n", " s\t", "\tK ", "v", "[S]\r\nk\r\nK=v\r\n"},
      {"[S]\nk=1\nK=2\n", "s", "k", std::nullopt, "[S]\nK=2\n"},
      {"[S]\nk=1", "S", "x", std::nullopt, "[S]\nk=1"},
      {"[S]\nk=1", "T", "k", std::nullopt, "[S]\nk=1"},
      {"x=0\n[S]\nk=1\n[T]\n[S]\n", "S", std::nullopt, std::nullopt, "x=0\n[T]\n[S]\n"},
      {"[T]\n[S]\nk=1", "S", std::nullopt, "v", "[T]\n"},
  };
  for (const auto& row : kRows) {
    std::optional<std::string> file = row.before;
    EXPECT_TRUE(writeIni(file, row.section, row.key, row.value));
    EXPECT_EQ(file, row.after) << "before: " << row.before;
  }
}

TEST(IniFile, NothingIsMadeOfADeletionOrWithoutASection) {
  std::optional<std::string> none;
  EXPECT_TRUE(writeIni(none, "S", "k", std::nullopt));
  EXPECT_FALSE(writeIni(none, std::nullopt, "k", "v"));
  EXPECT_EQ(none, std::nullopt);
}

TEST(IniFile, BytesBecomeText) {
  const std::pair<std::string, std::string> kRows[] = {
      {"caf\xc3\xa9", "caf\xc3\xa9"},                // UTF-8
      {"caf\xe9", "caf\xc3\xa9"},                    // Latin-1
      {"\xc3\xa9\xe9", "\xc3\xa9\xc3\xa9"},          // both
      {"\xe2\x82", "\xc3\xa2\xc2\x82"},              // cut short
      {"\xc0\xaf", "\xc3\x80\xc2\xaf"},              // over-long
      {"\xed\xa0\x80", "\xc3\xad\xc2\xa0\xc2\x80"},  // surrogate
      {"\xf0\x9f\x8e\x9b", "\xf0\x9f\x8e\x9b"},      // beyond U+FFFF
      {"\xf4\x90\x80\x80", "\xc3\xb4\xc2\x90\xc2\x80\xc2\x80"}};
  for (const auto& [bytes, text] : kRows) EXPECT_EQ(textFromBytes(bytes), text);
}

TEST(IniFile, StringsAreCutAtCharactersNotBytes) {
  test::MemoryStore store;
  std::string accents;
  for (int i = 0; i < 300; ++i) accents += "\xc3\xa9";
  EXPECT_TRUE(WriteIniString(store, "Recording", "SavePath", accents, "f.ini").ok());
  EXPECT_EQ(ReadIniString(store, "Recording", "SavePath", "", "f.ini"), accents.substr(0, 508));
  EXPECT_EQ(ReadIniString(store, "Recording", "Other", "dflt ", "f.ini"), "dflt");
  EXPECT_EQ(ReadIniString(store, "Recording", "SavePath", "dflt", "missing.ini"), "dflt");
}

TEST(IniFile, UnreadableFileIsNotWritten) {
  test::MemoryStore store;
  store.files["f.ini"] = "[S]\nk=1\n";
  store.unreadable = true;
  EXPECT_FALSE(WriteIniString(store, "S", "k", "2", "f.ini").ok());
  EXPECT_EQ(store.files["f.ini"], "[S]\nk=1\n");
}

// Whatever the file holds, a value written is the value read, and writing it twice changes nothing.
TEST(IniFile, RandomFilesTakeValues) {
  std::mt19937 random(20260);
  constexpr std::string_view kAlphabet = "[]=;\"' \t\r\n\x1a\0\xef\xbb\xbf\xe9SkSkab"sv;
  for (int round = 0; round < 600; ++round) {
    std::string garbage;
    const std::size_t length = random() % 80;
    while (garbage.size() < length) garbage += kAlphabet[random() % kAlphabet.size()];
    std::optional<std::string> file = garbage;
    readIni(file, std::nullopt, std::nullopt, "", random() % 10);
    readIni(file, "S", std::nullopt, "", random() % 10);
    for (const char* section : {"S", "", "k]"}) {
      ASSERT_TRUE(writeIni(file, section, "k", "v"));
      ASSERT_EQ(readIni(file, section, "k", "none"), "v") << json(garbage).dump(-1, ' ', true);
    }
    const std::optional<std::string> once = file;
    writeIni(file, "S", "k", "v");
    ASSERT_EQ(file, once);
    writeIni(file, "S", std::nullopt, std::nullopt);
    ASSERT_LT(file->size(), once->size());
  }
}

}  // namespace
}  // namespace qv3
