#include "recording/setuprules.h"

#include <gtest/gtest.h>

#include <string>

namespace qv3 {
namespace {

/// The dialog as it opens: everything off, then both present options are clicked.
SetupRules opened(bool folder, int mode, int type, int number) {
  SetupRules rules = SetupRules::opened(folder);
  rules.suffixClicked(type, number);
  rules.modeClicked(mode, type == 0, number);
  return rules;
}

struct Shown {
  bool automaticModes, suffixTypes, reset, prompt, numberShown;
};

void expectShown(const SetupRules& rules, const Shown& shown, const std::string& what) {
  EXPECT_EQ(rules.automaticModes, shown.automaticModes) << what;
  EXPECT_EQ(rules.suffixTypes, shown.suffixTypes) << what;
  EXPECT_EQ(rules.reset, shown.reset) << what;
  EXPECT_EQ(rules.prompt, shown.prompt) << what;
  EXPECT_EQ(rules.numberShown, shown.numberShown) << what;
}

TEST(SetupRules, OpenShowsWhatModeAndSuffixNeed) {
  struct Row {
    const char* name;
    bool folder;
    int mode, type, number;
    Shown shown;
  };
  const Row rows[] = {
      {"manual", true, 1, 0, 7, {true, false, false, true, false}},
      {"manual, no folder", false, 1, 1, 1, {false, false, false, true, false}},
      {"auto name, dated", true, 2, 1, 7, {true, true, false, true, false}},
      {"auto name, first number", true, 2, 0, 1, {true, true, false, true, true}},
      {"auto name, second number", true, 2, 0, 2, {true, true, true, true, true}},
      {"auto save, numbered", true, 3, 0, 2, {true, true, true, false, true}},
      {"auto save, dated", true, 3, 1, 2, {true, true, false, false, false}},
  };
  for (const Row& row : rows)
    expectShown(opened(row.folder, row.mode, row.type, row.number), row.shown, row.name);
}

TEST(SetupRules, ClicksOneAfterAnother) {
  SetupRules rules = opened(false, 1, 0, 5);
  rules.folderChosen(false);
  EXPECT_FALSE(rules.automaticModes);
  rules.folderChosen(true);
  EXPECT_TRUE(rules.automaticModes);

  rules.modeClicked(3, true, 5);
  expectShown(rules, {true, true, true, false, true}, "auto save");
  rules.numberReset();
  expectShown(rules, {true, true, false, false, true}, "number is 1");
  rules.suffixClicked(1, 1);
  expectShown(rules, {true, true, false, false, false}, "dated");
  rules.modeClicked(2, false, 5);
  expectShown(rules, {true, true, false, true, false}, "auto name, dated");
  rules.suffixClicked(0, 5);
  expectShown(rules, {true, true, true, true, true}, "numbered");
  rules.modeClicked(1, true, 5);
  expectShown(rules, {true, false, false, true, false}, "manual");
}

}  // namespace
}  // namespace qv3
