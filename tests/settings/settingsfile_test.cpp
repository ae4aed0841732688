#include "settings/settingsfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "tests/support/memorystore.h"

namespace qv3 {
namespace {

class SettingsFileTest : public testing::Test {
 protected:
  std::string& contents() { return m_store.files["a.ini"]; }

  ProgramSettings loaded() {
    ProgramSettings settings;
    settings.IniPath = "a.ini";
    m_file.LoadAllSettings(settings);
    return settings;
  }

  test::MemoryStore m_store;
  SettingsFile m_file{m_store, "home"};
};

/// A value that is neither zero nor the default, different in every row as far as its type allows.
std::string otherText(const SettingRow& row, int number) {
  if (!std::holds_alternative<bool ProgramSettings::*>(row.field)) return std::to_string(number);
  ProgramSettings settings;
  setFromText(settings, row, row.defaultText);
  return textOf(settings, row) == "True" ? "False" : "True";
}

TEST_F(SettingsFileTest, EveryRowIsSavedAndLoaded) {
  ProgramSettings settings = loaded();
  int number = 100;
  for (const SettingRow& row : settingsRows()) {
    ASSERT_TRUE(setFromText(settings, row, otherText(row, ++number))) << row.key;
  }
  ASSERT_TRUE(m_file.SaveDisplaySettings(settings).ok());
  ASSERT_TRUE(m_file.SaveRecordingSettings(settings).ok());
  m_store.files["a.ini"] = m_store.files[settings.IniPath];
  const ProgramSettings again = loaded();
  for (const SettingRow& row : settingsRows()) {
    EXPECT_EQ(textOf(again, row), textOf(settings, row)) << row.key;
  }
  EXPECT_TRUE(m_file.SettingsUnchanged(settings));
}

TEST_F(SettingsFileTest, FirstStartTakesTheDefaultsAndMakesNoFile) {
  ProgramSettings settings;
  m_file.LoadAllSettings(settings);
  EXPECT_EQ(std::filesystem::path(settings.IniPath), std::filesystem::path("home/qv3_Varnel.ini"));
  EXPECT_EQ(settings.Dial_Color, 16777215);
  EXPECT_EQ(settings.SavePrefix, "Prefix_");
  EXPECT_TRUE(settings.RecordVisible);
  EXPECT_TRUE(m_store.files.empty());
  EXPECT_TRUE(m_file.SettingsUnchanged(settings));
}

TEST_F(SettingsFileTest, DamagedValuesLeaveTheirFieldsAlone) {
  contents() =
      "[Colors]\r\nDial_Color=5\r\nScale_Color=6\r\n[Format]\r\nNeedle_Width=2\r\nClockLeft="
      "True\r\n";
  ProgramSettings settings = loaded();
  contents() =
      "[Colors]\r\nDial_Color=abc\r\nScale_Color=\r\n[Format]\r\nNeedle_Width=40000\r\n"
      "ClockLeft=maybe\r\nDateType=2\r\n";
  m_file.LoadAllSettings(settings);
  EXPECT_EQ(settings.Dial_Color, 5);
  EXPECT_EQ(settings.Scale_Color, 6);
  EXPECT_EQ(settings.Needle_Width, 2);
  EXPECT_TRUE(settings.ClockLeft);
  EXPECT_EQ(settings.DateType, 2);
}

TEST_F(SettingsFileTest, EachSaveReplacesTheFileOnceAndKeepsTheRest) {
  contents() = "; mine\n[Extra]\nq=1\n[Colors]\n dial_color = 7 ; old\nOther=x\n";
  ProgramSettings settings = loaded();
  settings.Dial_Color = 8;
  ASSERT_TRUE(m_file.SaveDisplaySettings(settings).ok());
  EXPECT_EQ(m_store.replacements, 1);
  EXPECT_EQ(contents().find("; mine\n[Extra]\nq=1\n[Colors]\n dial_color =8\nOther=x\nLED_Set"),
            0U);
  EXPECT_EQ(contents().find('\r'), std::string::npos);
  EXPECT_EQ(contents().find("[Recording]"), std::string::npos);
  ASSERT_TRUE(m_file.SaveRecordingSettings(settings).ok());
  EXPECT_EQ(m_store.replacements, 2);
  EXPECT_NE(contents().find("[Recording]\nSavePath=\n"), std::string::npos);
}

TEST_F(SettingsFileTest, SavingAsLeavesNothingOfTheOldFile) {
  ProgramSettings settings = loaded();
  m_store.files["b.ini"] = "[Recording]\r\nSavePath=x\r\n";
  ASSERT_TRUE(m_file.SaveDisplaySettingsAs(settings, "b.ini").ok());
  EXPECT_EQ(settings.IniPath, "b.ini");
  EXPECT_EQ(m_store.replacements, 1);
  EXPECT_EQ(m_store.files["b.ini"].find("[Colors]\r\nDial_Color=16777215\r\n"), 0U);
  EXPECT_EQ(m_store.files["b.ini"].find("SavePath"), std::string::npos);
}

TEST_F(SettingsFileTest, FailuresAreReportedAndChangeNothing) {
  contents() = "[Colors]\nDial_Color=7\n";
  const ProgramSettings settings = loaded();
  m_store.failure = "Disk full";
  EXPECT_EQ(m_file.SaveDisplaySettings(settings).error, "Disk full");
  m_store.failure.clear();
  m_store.unreadable = true;
  EXPECT_FALSE(m_file.SaveRecordingSettings(settings).ok());
  EXPECT_EQ(contents(), "[Colors]\nDial_Color=7\n");
}

TEST_F(SettingsFileTest, ComparisonGoesByValue) {
  const struct {
    const char* file;
    bool unchanged;
  } kRows[] = {
      {"[Colors]\nDial_Color= 16,777,215.0 \n", true},
      {"[Colors]\nDial_Color=16777215.25\n", false},
      {"[Colors]\nDial_Color=\n", false},
      {"[Colors]\nDial_Color=white\n", false},
      {"[Format]\nRecordVisible=-1\n", true},
      {"[Format]\nRecordVisible=maybe\n", false},
      {"[Graph]\nGraphTimescale=8.0\n", false},
      {"[Recording]\nSavePath=elsewhere\n", true},
  };
  ProgramSettings settings;
  m_file.LoadAllSettings(settings);
  settings.IniPath = "a.ini";
  for (const auto& row : kRows) {
    contents() = row.file;
    EXPECT_EQ(m_file.SettingsUnchanged(settings), row.unchanged) << row.file;
  }
}

TEST_F(SettingsFileTest, DefaultColoursTouchColoursOnly) {
  ProgramSettings settings = loaded();
  const ProgramSettings defaults = settings;
  for (const SettingRow& row : settingsRows()) setFromText(settings, row, otherText(row, 77));
  const Effect effects = SetDefaultColours(settings);
  for (const SettingRow& row : settingsRows()) {
    const bool restored = textOf(settings, row) == textOf(defaults, row);
    EXPECT_EQ(restored, row.section == kColorsSection) << row.key;
  }
  EXPECT_TRUE(has(effects, Effect::RedrawPanel | Effect::RecomputePanelTint |
                               Effect::RecomputeNeedleTints | Effect::GraphBack |
                               Effect::WindowBack));
}

// A file of junk between whole and broken settings loads, saves, and then compares equal.
TEST_F(SettingsFileTest, RandomFilesSurviveLoadAndSave) {
  std::mt19937 random(4711);
  for (int round = 0; round < 200; ++round) {
    contents().clear();
    for (const SettingRow& row : settingsRows()) {
      if (random() % 8 == 0) contents() += "[" + std::string(row.section) + "]\r\n";
      if (random() % 2 == 0) contents() += std::string(row.key) + "=";
      for (std::size_t n = random() % 5; n > 0; --n) contents() += static_cast<char>(random());
      if (random() % 2 == 0) contents() += "\n";
    }
    const ProgramSettings settings = loaded();
    ASSERT_TRUE(m_file.SaveDisplaySettings(settings).ok());
    const ProgramSettings again = loaded();
    for (const SettingRow& row : settingsRows()) {
      // A text may lose one more pair of quotes when it is read again.
      if (std::holds_alternative<std::string ProgramSettings::*>(row.field)) continue;
      ASSERT_EQ(textOf(again, row), textOf(settings, row)) << row.key;
    }
  }
}

}  // namespace
}  // namespace qv3
