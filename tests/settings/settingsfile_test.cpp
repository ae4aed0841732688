#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>

#include "settings/disktextstore.h"
#include "settings/sessionconfig.h"
#include "settings/settingsfile.h"
#include "tests/support/memorystore.h"

namespace qv3 {
namespace {

TEST(SettingsRows, EveryKeyAndFieldOnce) {
  std::map<std::string_view, int> sections;
  ProgramSettings settings;
  ProgramSettings defaults;
  for (const SettingRow& row : settingsRows()) {
    EXPECT_EQ(findSetting(row.key), &row) << row.key;
    EXPECT_TRUE(setFromText(defaults, row, row.defaultText)) << row.key;
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

TEST(SettingsRows, ByName) {
  struct Row {
    const char* key;
    SettingValue value;
    bool taken;
    SettingValue after;
  };
  using Text = std::string;
  ProgramSettings settings;
  for (const Row& row : {Row{"DialType", 3, true, 3}, Row{"DialType", Text("2.5"), true, 2},
                         Row{"DialType", true, false, 2}, Row{"SuffixNum", 32768, false, 0},
                         Row{"FreezeEnable", true, true, true}, Row{"FreezeEnable", 0, true, false},
                         Row{"FreezeEnable", Text("TRUE"), true, true},
                         Row{"GraphHeight_Index", Text(), true, Text()},
                         Row{"GraphHeight_Index", 7, true, Text("7")},
                         Row{"SavePath", Text(" a b "), true, Text(" a b ")},
                         Row{"KnobPosition", -32768, true, -32768}, Row{"ComPort", 16, true, 16},
                         Row{"AutoSaveMode", 2, true, 2}}) {
    EXPECT_EQ(setSetting(settings, row.key, row.value), row.taken) << row.key;
    EXPECT_EQ(getSetting(settings, row.key), row.after) << row.key;
  }
  EXPECT_FALSE(setSetting(settings, "dialtype", 1));
  EXPECT_EQ(getSetting(settings, "IniPath"), std::nullopt);
}

class SettingsFileTest : public testing::Test {
 protected:
  std::string& contents() { return m_store.files["a.ini"]; }

  ProgramSettings loaded(const std::string& path = "a.ini") {
    ProgramSettings settings;
    settings.IniPath = path;
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

TEST_F(SettingsFileTest, EveryRowIsSavedAndLoadedAndDefaultColoursTouchColoursOnly) {
  ProgramSettings settings = loaded();
  const ProgramSettings defaults = settings;
  int number = 100;
  for (const SettingRow& row : settingsRows()) {
    ASSERT_TRUE(setFromText(settings, row, otherText(row, ++number))) << row.key;
  }
  ASSERT_TRUE(m_file.SaveDisplaySettings(settings).ok());
  ASSERT_TRUE(m_file.SaveRecordingSettings(settings).ok());
  const ProgramSettings again = loaded(settings.IniPath);
  for (const SettingRow& row : settingsRows()) {
    EXPECT_EQ(textOf(again, row), textOf(settings, row)) << row.key;
  }
  EXPECT_TRUE(m_file.SettingsUnchanged(settings));

  const Effect effects = SetDefaultColours(settings);
  for (const SettingRow& row : settingsRows()) {
    const bool restored = textOf(settings, row) == textOf(defaults, row);
    EXPECT_EQ(restored, row.section == kColorsSection) << row.key;
  }
  EXPECT_TRUE(has(effects, Effect::RedrawPanel | Effect::RecomputePanelTint |
                               Effect::RecomputeNeedleTints | Effect::GraphBack |
                               Effect::WindowBack));
}

TEST_F(SettingsFileTest, FirstStartTakesTheDefaultsAndMakesNoFile) {
  const ProgramSettings settings = loaded("");
  EXPECT_EQ(settings.IniPath, "home/qv3_Varnel.ini");
  EXPECT_EQ(settings.Dial_Color, 16777215);
  EXPECT_EQ(settings.Panel_Color, 10070316);
  EXPECT_EQ(settings.Needle_Width, 4);
  EXPECT_TRUE(settings.RecordVisible);
  EXPECT_FALSE(settings.GraphInvert);
  EXPECT_EQ(settings.SavePrefix, "Prefix_");
  EXPECT_EQ(settings.LoadPath, "C:\\Program Files\\quorvantel\\samples\\");
  EXPECT_TRUE(m_store.files.empty());
  EXPECT_TRUE(m_file.SettingsUnchanged(settings));
}

TEST_F(SettingsFileTest, DamagedValuesLeaveTheirFieldsAlone) {
  contents() = "[Colors]\nDial_Color=5\nScale_Color=6\n[Format]\nNeedle_Width=2\nClockLeft=True\n";
  ProgramSettings settings = loaded();
  contents() =
      "[Colors]\nDial_Color=abc\nScale_Color=\n[Format]\nNeedle_Width=40000\nClockLeft=maybe\n"
      "DateType=2\n";
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
  EXPECT_TRUE(
      contents().starts_with("; mine\n[Extra]\nq=1\n[Colors]\n dial_color =8\nOther=x\nLED_Set"));
  EXPECT_EQ(contents().find('\r'), std::string::npos);
  EXPECT_EQ(contents().find("[Recording]"), std::string::npos);
  ASSERT_TRUE(m_file.SaveRecordingSettings(settings).ok());
  EXPECT_EQ(m_store.replacements, 2);
  EXPECT_NE(contents().find("[Recording]\nSavePath=\n"), std::string::npos);
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
  ProgramSettings settings = loaded("");
  settings.IniPath = "a.ini";
  using Row = std::pair<const char*, bool>;
  for (const auto& [file, unchanged] :
       {Row{"[Colors]\nDial_Color= 16,777,215.0 \n", true},
        Row{"[Colors]\nDial_Color=16777215.25\n", false}, Row{"[Colors]\nDial_Color=\n", false},
        Row{"[Colors]\nDial_Color=white\n", false}, Row{"[Format]\nRecordVisible=-1\n", true},
        Row{"[Format]\nRecordVisible=maybe\n", false}, Row{"[Graph]\nGraphTimescale=8.0\n", false},
        Row{"[Recording]\nSavePath=elsewhere\n", true}}) {
    contents() = file;
    EXPECT_EQ(m_file.SettingsUnchanged(settings), unchanged) << file;
  }
}

using namespace std::string_view_literals;

struct SessionConfigTest : testing::Test {
  test::MemoryStore m_store;
  std::string& m_contents = m_store.files["qv3_Varnel.cfg"];
  StoreResult m_entered;
  int m_entries = 0;
  SessionConfigFile m_file{m_store, [this] { return ++m_entries, m_entered; }};
};

std::string summary(const ProgramSettings& settings) {
  const WindowPlacement& window = settings.WindowGeometry;
  std::string text = settings.IniPath;
  for (const std::int32_t number : std::initializer_list<std::int32_t>{
           settings.AutoSaveMode, settings.ComPort, settings.KnobPosition, window.left, window.top,
           window.width, window.state}) {
    text += "|" + std::to_string(number);
  }
  return text;
}

TEST_F(SessionConfigTest, EightLines) {
  ProgramSettings settings;
  settings.IniPath = "C:\\qv3\\qv3_Varnel.ini";
  settings.AutoSaveMode = 2;
  settings.ComPort = 3;
  settings.KnobPosition = 32;
  ASSERT_TRUE(
      m_file.WriteSessionConfig(settings, {twipsFromPixels(80), 900.5, twipsFromPixels(3000), 2}));
  EXPECT_EQ(m_contents,
            "\"C:\\qv3\\qv3_Varnel.ini\"\r\n2\r\n3\r\n32\r\n1200\r\n900.5\r\n32767\r\n2\r\n");
  EXPECT_EQ(m_entries, 1);
  EXPECT_EQ(settings.WindowGeometry.left, 0);
  ProgramSettings again;
  EXPECT_TRUE(m_file.ReadSessionConfig(again));
  EXPECT_EQ(summary(again), "C:\\qv3\\qv3_Varnel.ini|2|3|32|1200|900|32767|2");
}

TEST_F(SessionConfigTest, AnyPathComesBack) {
  for (const char* path : {"", "/a b/c.ini", "\"", "\"\"", "/a\"b\"/c,1.ini", "a\",\"b", " lead ",
                           "line\r\nend", "caf\xc3\xa9", "caf\xe9"}) {
    ProgramSettings settings;
    settings.IniPath = path;
    ASSERT_TRUE(m_file.WriteSessionConfig(settings, {}));
    ProgramSettings again;
    EXPECT_TRUE(m_file.ReadSessionConfig(again)) << path;
    EXPECT_EQ(again.IniPath, path);
  }
}

TEST_F(SessionConfigTest, ReadingStopsAtTheFirstDamage) {
  struct Row {
    const char* file;
    bool whole;
    const char* read;
  };
  for (const Row& row :
       {Row{"", false, "old|9|9|9|9|9|9|9"},
        Row{"\"p\"\r\nabc\r\n3\r\n32\r\n1\r\n2\r\n3\r\n0\r\n", false, "p|9|9|9|9|9|9|9"},
        Row{"\"p\"\r\n1\r\n2\r\n3\r\n4\r\n32768\r\n6\r\n0\r\n", false, "p|1|2|3|4|9|9|9"},
        Row{"\"p\"\r\n1\r\n2\r\n3\r\n\r\n5\r\n6\r\n0\r\n", false, "p|1|2|3|9|9|9|9"},
        Row{"\"p\"\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n", false, "p|1|2|3|4|5|6|9"},
        Row{"\"p\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n0\r\n", false, "old|9|9|9|9|9|9|9"},
        Row{"\"p\"q\r\n1\r\n", false, "old|9|9|9|9|9|9|9"},
        Row{"p\n1\n2\n3\n4\n5\n6.5\n0", true, "p|1|2|3|4|5|6|0"},
        Row{"\xef\xbb\xbf \"p\" , 1, 2 ,3\r4\r5\r6\r0", true, "p|1|2|3|4|5|6|0"}}) {
    m_contents = row.file;
    ProgramSettings settings;  // which values were not read shows
    settings.IniPath = "old";
    settings.AutoSaveMode = settings.ComPort = settings.KnobPosition = 9;
    settings.WindowGeometry = {9, 9, 9, 9};
    EXPECT_EQ(m_file.ReadSessionConfig(settings), row.whole) << row.file;
    EXPECT_EQ(summary(settings), row.read) << row.file;
  }
}

TEST_F(SessionConfigTest, MissingFileAndFailedSteps) {
  m_store.files.clear();
  ProgramSettings settings;
  EXPECT_FALSE(m_file.ReadSessionConfig(settings));
  m_entered.error = "No such folder";
  EXPECT_FALSE(m_file.WriteSessionConfig(settings, {}));
  EXPECT_EQ(m_store.replacements, 0);
  m_entered.error.clear();
  m_store.failure = "Disk full";
  EXPECT_FALSE(m_file.WriteSessionConfig(settings, {}));
}

TEST_F(SessionConfigTest, DamagedFilesReadTheSameAfterRepair) {
  std::mt19937 random(815);
  constexpr std::string_view kAlphabet = "\"\r\n, \t019.-eA\0\xff"sv;
  int whole = 0;
  for (int round = 0; round < 2000; ++round) {
    m_contents = "\"/a/b.ini\"\r\n2\r\n3\r\n32\r\n1200\r\n900\r\n9600\r\n0\r\n";
    for (int damage = 0; damage < 3; ++damage) {
      m_contents[random() % m_contents.size()] = kAlphabet[random() % kAlphabet.size()];
    }
    ProgramSettings settings;
    whole += m_file.ReadSessionConfig(settings) ? 1 : 0;
    const WindowPlacement& window = settings.WindowGeometry;
    ASSERT_TRUE(m_file.WriteSessionConfig(
        settings, {1.0 * window.left, 1.0 * window.top, 1.0 * window.width, window.state}));
    ProgramSettings again;
    ASSERT_TRUE(m_file.ReadSessionConfig(again));
    ASSERT_EQ(summary(again), summary(settings));
  }
  EXPECT_GT(whole, 100);
}

namespace fs = std::filesystem;

struct DiskTextStoreTest : testing::Test {
  fs::path folder =
      fs::temp_directory_path() / ("qv3-store-" + std::to_string(std::random_device()()));
  DiskTextStore store;

  DiskTextStoreTest() { fs::create_directory(folder); }
  ~DiskTextStoreTest() override { fs::remove_all(folder); }
  std::string path(const std::string& name) const { return (folder / name).string(); }
  auto entries() const {
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
  }
};

TEST_F(DiskTextStoreTest, ReplacesWholeFilesAndLeavesNothingBeside) {
  // A name need not be valid UTF-8.
  for (const std::string& name : {path("caf\xc3\xa9.ini"), path("caf\xe9.ini")}) {
    EXPECT_FALSE(store.exists(name));
    EXPECT_EQ(store.read(name), std::nullopt);
    for (const std::string& contents :
         {std::string(10000, 'x'), std::string("a\r\n\0b", 5), std::string()}) {
      ASSERT_TRUE(store.replace(name, contents).ok());
      EXPECT_TRUE(store.exists(name));
      EXPECT_EQ(store.read(name), contents);
    }
  }
  EXPECT_EQ(entries(), 2);
}

TEST_F(DiskTextStoreTest, FailuresHaveAReasonAndLeaveNothingBehind) {
  fs::create_directory(path("folder"));
  EXPECT_FALSE(store.exists(path("folder")));
  EXPECT_EQ(store.read(path("folder")), std::nullopt);
  EXPECT_FALSE(store.exists(""));
  for (const std::string& name : {path("folder"), path("none/a.ini"), std::string()}) {
    EXPECT_NE(store.replace(name, "x").error, "") << name;
  }
  EXPECT_EQ(entries(), 1);
}

TEST_F(DiskTextStoreTest, LinkAndPermissionsStayAndAProtectedFileIsLeftAlone) {
  const std::string target = path("target.ini");
  ASSERT_TRUE(store.replace(target, "old").ok());
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("target.ini", path("link.ini"));
  ASSERT_TRUE(store.replace(path("link.ini"), "new").ok());
  EXPECT_TRUE(fs::is_symlink(path("link.ini")));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  fs::permissions(target, fs::perms::owner_read);
  EXPECT_FALSE(store.replace(target, "x").ok());
  EXPECT_EQ(store.read(target), "new");
}

}  // namespace
}  // namespace qv3
