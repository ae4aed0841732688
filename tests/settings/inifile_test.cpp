#include "settings/inifile.h"

#include <gtest/gtest.h>

#include <random>

#include "settings/utf8.h"
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
    ok.push_back(
        WriteIniString(file, bytesOrNull(write[0]), bytesOrNull(write[1]), bytesOrNull(write[2]))
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

TEST(IniFile, NamesAreListedAndCutBeforeTheirTwoZeros) {
  const std::optional<std::string> file =
      "lost=1\r\n[B]\r\nx=1\r\n;off=2\r\n x =3\r\nalone\r\n[ A ] ; note\r\n[B]\r\ny=1\r\n"
      "[S]\nab=1\nc=2\n";
  using Section = std::optional<std::string_view>;
  struct Row {
    Section section;
    std::size_t size;
    std::string_view names;
  };
  for (const Row& row :
       {Row{std::nullopt, 99, "B\0A\0B\0S\0"sv}, Row{"b", 99, "x\0x\0"sv}, Row{"A", 99, ""},
        Row{"C", 99, "DEF"}, Row{"S", 6, "ab\0c\0"sv}, Row{"S", 5, "ab\0"sv}, Row{"S", 4, "ab"},
        Row{"S", 2, ""}, Row{"S", 1, ""}, Row{"S", 0, ""}}) {
    EXPECT_EQ(readIni(file, row.section, std::nullopt, "DEF ", row.size), row.names)
        << row.section.value_or("all") << " " << row.size;
  }
  EXPECT_EQ(readIni(std::nullopt, std::nullopt, std::nullopt, "DEF"), "DEF");
}

TEST(IniFile, WritesKeepTheRestOfTheFile) {
  using Text = std::optional<std::string_view>;
  const Text kNone;
  struct Row {
    Text before, section, key, value, after;
    bool done = true;
  };
  for (const Row& row :
       {Row{"[S]\na=1\n\n[T]\nb=1\n", "S", "k", "v", "[S]\na=1\nk=v\n\n[T]\nb=1\n"},
        Row{"[S]\na=1\n", "T", "k", "v", "[S]\na=1\n[T]\nk=v\n"},
        Row{"[S]\ra=1", "T", "k", "v", "[S]\ra=1\r[T]\rk=v\r"},
        Row{"[A]\n[S]", "S", "k", "v", "[A]\n[S]\nk=v\n"},
        Row{"[S]\r\n \t\x1a\r\n", "S", "k", "v", "[S]\r\nk=v\r\n \t\x1a\r\n"},
        Row{"[S]\r\nk=1", "S", "k", "v", "[S]\r\nk=v"},
        Row{"[S]\r\nk\r\n", " s\t", "\tK ", "v", "[S]\r\nk\r\nK=v\r\n"},
        Row{"[S]\nk=1\nK=2\n", "s", "k", kNone, "[S]\nK=2\n"},
        Row{"[S]\nk=1", "S", "x", kNone, "[S]\nk=1"}, Row{"[S]\nk=1", "T", "k", kNone, "[S]\nk=1"},
        Row{"x=0\n[S]\nk=1\n[T]\n[S]\n", "S", kNone, kNone, "x=0\n[T]\n[S]\n"},
        Row{"[T]\n[S]\nk=1", "S", kNone, "v", "[T]\n"},
        Row{"\xef\xbb\xbf[S]\r\nk=1\r\n", "S", "k", "2", "\xef\xbb\xbf[S]\r\nk=2\r\n"},
        Row{"\xef\xbb\xbf", "S", "k", "2", "\xef\xbb\xbf[S]\r\nk=2\r\n"},
        Row{kNone, "S", "k", "v", "[S]\r\nk=v\r\n"}, Row{kNone, "S", "k", kNone, kNone},
        Row{kNone, kNone, "k", "v", kNone, false}}) {
    std::optional<std::string> file(row.before);
    EXPECT_EQ(WriteIniString(file, row.section, row.key, row.value), row.done);
    EXPECT_EQ(file, row.after) << "before: " << row.before.value_or("none");
    if (!row.key || !row.value || !row.done) continue;
    EXPECT_EQ(readIni(file, row.section, row.key, ""), *row.value) << *row.after;
  }
}

TEST(IniFile, BytesBecomeText) {
  using Row = std::pair<const char*, const char*>;
  for (const auto& [bytes, text] :
       {Row{"caf\xc3\xa9", "caf\xc3\xa9"}, Row{"caf\xe9", "caf\xc3\xa9"},  // UTF-8, Latin-1, both
        Row{"\xc3\xa9\xe9", "\xc3\xa9\xc3\xa9"},
        // Cut short, over-long, surrogate, beyond U+FFFF and beyond U+10FFFF.
        Row{"\xe2\x82", "\xc3\xa2\xc2\x82"}, Row{"\xc0\xaf", "\xc3\x80\xc2\xaf"},
        Row{"\xed\xa0\x80", "\xc3\xad\xc2\xa0\xc2\x80"},
        Row{"\xf0\x9f\x8e\x9b", "\xf0\x9f\x8e\x9b"},
        Row{"\xf4\x90\x80\x80", "\xc3\xb4\xc2\x90\xc2\x80\xc2\x80"}}) {
    EXPECT_EQ(textFromBytes(bytes), text);
  }
}

TEST(IniFile, StringsAreCutAtCharactersNotBytes) {
  std::string accents;
  for (int i = 0; i < 300; ++i) accents += "\xc3\xa9";
  const std::optional<std::string> file = "[S]\r\nk=" + accents + "\r\n";
  EXPECT_EQ(ReadIniString(file, "S", "k", ""), accents.substr(0, 508));
  EXPECT_EQ(ReadIniString(file, "S", "other", "dflt "), "dflt");
  EXPECT_EQ(ReadIniString(std::nullopt, "S", "k", "dflt"), "dflt");
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
      ASSERT_TRUE(WriteIniString(file, section, "k", "v"));
      ASSERT_EQ(readIni(file, section, "k", "none"), "v") << json(garbage).dump(-1, ' ', true);
    }
    const std::optional<std::string> once = file;
    WriteIniString(file, "S", "k", "v");
    ASSERT_EQ(file, once);
    WriteIniString(file, "S", std::nullopt, std::nullopt);
    ASSERT_LT(file->size(), once->size());
  }
}

}  // namespace
}  // namespace qv3
