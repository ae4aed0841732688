#include "app/commandtable.h"

#include <gtest/gtest.h>

#include <QtCore/qnamespace.h>

#include <set>

#include "app/options.h"
#include "settings/settingsrows.h"

namespace qv3 {
namespace {

TEST(CommandTable, EveryRowStandsInAMenuBeforeItUnderANameOfItsOwn) {
  std::set<std::string_view> menus{""};
  std::set<std::string_view> names;
  for (const MenuRow& row : menuRows()) {
    EXPECT_TRUE(names.insert(row.name).second) << row.name;
    EXPECT_TRUE(menus.count(row.menu)) << row.name;
    if (row.act == Act::Menu) menus.insert(row.name);
  }
}

TEST(CommandTable, SettingsOfTheRowsExistAndTakeTheirValues) {
  for (const MenuRow& row : menuRows()) {
    if (row.key.empty()) {
      EXPECT_NE(row.act, Act::Choose) << row.name;
      EXPECT_NE(row.act, Act::Toggle) << row.name;
      EXPECT_NE(row.act, Act::PickColour) << row.name;
      continue;
    }
    ASSERT_NE(findSetting(row.key), nullptr) << row.name;
    ProgramSettings settings;
    EXPECT_TRUE(row.value.empty() || setFromText(settings, row.key, row.value)) << row.name;
  }
}

TEST(CommandTable, KeysAreToldApartByCodeAndShift) {
  std::set<std::pair<int, bool>> codes;
  for (const KeyRow& row : keyRows()) EXPECT_TRUE(codes.insert({row.code, row.shift}).second);
  EXPECT_EQ(keyFor(Qt::Key_C, false), Key::C);
  EXPECT_EQ(keyFor(Qt::Key_C, true), Key::C);
  EXPECT_EQ(keyFor(Qt::Key_Comma, true), Key::Less);
  EXPECT_EQ(keyFor(Qt::Key_Comma, false), Key::Other);
  EXPECT_EQ(keyFor(Qt::Key_Greater, true), Key::Greater);
  EXPECT_EQ(keyFor(Qt::Key_Escape, false), Key::Other);
}

struct CommandLine {
  std::vector<std::string> arguments;
  std::string error;
  std::vector<std::string> ports;
  std::string home;
  std::string capture;
  std::string session{};
};

class OptionsTest : public testing::TestWithParam<CommandLine> {};

TEST_P(OptionsTest, Parses) {
  const auto [options, error] = parseOptions(GetParam().arguments);
  EXPECT_EQ(error, GetParam().error);
  EXPECT_EQ(options.ports, GetParam().ports);
  EXPECT_EQ(options.home, GetParam().home);
  EXPECT_EQ(options.capture, GetParam().capture);
  EXPECT_EQ(options.session, GetParam().session);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, OptionsTest,
    testing::Values(
        CommandLine{{}, "", {}, "", ""},
        CommandLine{{"--port", "1=/a", "--home", "h", "--port=2=/b", "--capture=c"},
                    "",
                    {"1=/a", "2=/b"},
                    "h",
                    "c"},
        CommandLine{{"-platform", "offscreen", "--style=fusion", "--home", "-h"}, "", {}, "-h", ""},
        CommandLine{{"--prt", "1=/a"}, "unknown option --prt", {}, "", ""},
        CommandLine{{"-h"}, "unknown option -h", {}, "", ""},
        CommandLine{{"--versions"}, "unknown option --versions", {}, "", ""},
        CommandLine{{"a.qvd", "--home", "h"}, "", {}, "h", "", "a.qvd"},
        CommandLine{{"/b/A.QVD"}, "", {}, "", "", "/b/A.QVD"},
        CommandLine{{"file.ini"}, "\"file.ini\" is not a session, which ends in .qvd", {}, "", ""},
        CommandLine{{".qvd"}, "\".qvd\" is not a session, which ends in .qvd", {}, "", ""},
        CommandLine{{""}, "\"\" is not a session, which ends in .qvd", {}, "", ""},
        CommandLine{{"a.qvd", "b.qvd"},
                    "only one session can be opened, not \"a.qvd\" and \"b.qvd\"",
                    {},
                    "",
                    "",
                    "a.qvd"},
        CommandLine{{"--home"}, "--home needs a value", {}, "", ""},
        CommandLine{{"--home", "--port"}, "--home needs a value", {}, "", ""},
        CommandLine{{"--capture="}, "--capture needs a value", {}, "", ""}));

}  // namespace
}  // namespace qv3
