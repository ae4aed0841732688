#include "settings/settingsrows.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace qv3 {
namespace {

TEST(SettingsRows, EveryKeyAndFieldOnce) {
  std::set<std::string_view> keys;
  std::map<std::string_view, int> sections;
  ProgramSettings settings;
  for (const SettingRow& row : settingsRows()) {
    EXPECT_TRUE(keys.insert(row.key).second) << row.key;
    EXPECT_EQ(findSetting(row.key), &row);
    ++sections[row.section];
    // A field that two rows share would show the other row's value here.
    EXPECT_NE(textOf(settings, row), "True") << row.key;
    EXPECT_NE(textOf(settings, row), "7") << row.key;
    EXPECT_TRUE(setFromText(settings, row, "7")) << row.key;
  }
  const std::map<std::string_view, int> expected = {
      {"Colors", 14}, {"Format", 9}, {"Settings", 7}, {"Graph", 6}, {"Recording", 10}};
  EXPECT_EQ(sections, expected);
}

TEST(SettingsRows, EveryDefaultCanBeRead) {
  ProgramSettings settings;
  for (const SettingRow& row : settingsRows()) {
    EXPECT_TRUE(setFromText(settings, row, row.defaultText)) << row.key;
  }
  EXPECT_EQ(settings.Panel_Color, 10070316);
  EXPECT_EQ(settings.Needle_Width, 4);
  EXPECT_TRUE(settings.RecordVisible);
  EXPECT_FALSE(settings.GraphInvert);
  EXPECT_EQ(settings.LoadPath, "C:\\Program Files\\quorvantel\\samples\\");
}

TEST(SettingsRows, ByName) {
  const struct {
    const char* key;
    SettingValue value;
    bool taken;
    SettingValue after;
  } kRows[] = {
      {"DialType", 3, true, 3},
      {"DialType", std::string("2.5"), true, 2},
      {"DialType", true, false, 2},
      {"SuffixNum", 32768, false, 0},
      {"FreezeEnable", true, true, true},
      {"FreezeEnable", 0, true, false},
      {"FreezeEnable", std::string("TRUE"), true, true},
      {"GraphHeight_Index", std::string(), true, std::string()},
      {"GraphHeight_Index", 7, true, std::string("7")},
      {"SavePath", std::string(" a b "), true, std::string(" a b ")},
      {"KnobPosition", -32768, true, -32768},
      {"ComPort", 16, true, 16},
      {"AutoSaveMode", 2, true, 2},
  };
  ProgramSettings settings;
  for (const auto& row : kRows) {
    EXPECT_EQ(setSetting(settings, row.key, row.value), row.taken) << row.key;
    EXPECT_EQ(getSetting(settings, row.key), row.after) << row.key;
  }
  EXPECT_FALSE(setSetting(settings, "dialtype", 1));
  EXPECT_EQ(getSetting(settings, "IniPath"), std::nullopt);
}

TEST(SettingsRows, EffectsOfTheMenus) {
  const auto effects = [](const char* key) { return findSetting(key)->effects; };
  for (const char* key : {"Dial_Color", "MainNeedle_Color"}) {
    EXPECT_EQ(effects(key), Effect::RecomputeNeedleTints | Effect::RedrawPanel) << key;
  }
  for (const char* key : {"LED_Set_Color", "GraphPen_Color", "SwitchMode_Index", "FreezeEnable"}) {
    EXPECT_EQ(effects(key), Effect::None) << key;
  }
  for (const char* key : {"DialType", "ClockLeft", "GraphVisible", "GraphHeight_Index",
                          "RecordVisible", "Background_Color"}) {
    EXPECT_TRUE(has(effects(key), Effect::Layout)) << key;
  }
  // Neither may re-centre the needle.
  EXPECT_EQ(effects("ShadowNeedleColor_Index"), Effect::RecomputeNeedleTints);
  EXPECT_EQ(effects("Needle_Width"), Effect::WipeNeedle);
  EXPECT_EQ(effects("KnobPosition"), Effect::KnobMoved);
}

}  // namespace
}  // namespace qv3
