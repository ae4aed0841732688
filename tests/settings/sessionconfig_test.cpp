#include "settings/sessionconfig.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/memorystore.h"

namespace qv3 {
namespace {

using namespace std::string_view_literals;

class SessionConfigTest : public testing::Test {
 protected:
  std::string& contents() { return m_store.files["qv3_Varnel.cfg"]; }

  test::MemoryStore m_store;
  StoreResult m_entered;
  int m_entries = 0;
  SessionConfigFile m_file{m_store, [this] {
                             ++m_entries;
                             return m_entered;
                           }};
};

std::string summary(const ProgramSettings& settings) {
  const WindowPlacement& window = settings.WindowGeometry;
  std::string text = settings.IniPath;
  for (const int number :
       {settings.AutoSaveMode, static_cast<std::int32_t>(settings.ComPort),
        static_cast<std::int32_t>(settings.KnobPosition), static_cast<std::int32_t>(window.left),
        static_cast<std::int32_t>(window.top), static_cast<std::int32_t>(window.width),
        static_cast<std::int32_t>(window.state)}) {
    text += "|" + std::to_string(number);
  }
  return text;
}

/// Settings that show which values were not read.
ProgramSettings touched() {
  ProgramSettings settings;
  settings.IniPath = "old";
  settings.AutoSaveMode = 9;
  settings.ComPort = settings.KnobPosition = 9;
  settings.WindowGeometry = {9, 9, 9, 9};
  return settings;
}

TEST_F(SessionConfigTest, EightLines) {
  ProgramSettings settings;
  settings.IniPath = "C:\\qv3\\qv3_Varnel.ini";
  settings.AutoSaveMode = 2;
  settings.ComPort = 3;
  settings.KnobPosition = 32;
  ASSERT_TRUE(
      m_file.WriteSessionConfig(settings, {twipsFromPixels(80), 900.5, twipsFromPixels(3000), 2}));
  EXPECT_EQ(contents(),
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
  const struct {
    const char* file;
    bool whole;
    const char* read;
  } kRows[] = {
      {"", false, "old|9|9|9|9|9|9|9"},
      {"\"p\"\r\nabc\r\n3\r\n32\r\n1\r\n2\r\n3\r\n0\r\n", false, "p|9|9|9|9|9|9|9"},
      {"\"p\"\r\n1\r\n2\r\n3\r\n4\r\n32768\r\n6\r\n0\r\n", false, "p|1|2|3|4|9|9|9"},
      {"\"p\"\r\n1\r\n2\r\n3\r\n\r\n5\r\n6\r\n0\r\n", false, "p|1|2|3|9|9|9|9"},
      {"\"p\"\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n", false, "p|1|2|3|4|5|6|9"},
      {"\"p\r\n1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n0\r\n", false, "old|9|9|9|9|9|9|9"},
      {"\"p\"q\r\n1\r\n", false, "old|9|9|9|9|9|9|9"},
      {"p\n1\n2\n3\n4\n5\n6.5\n0", true, "p|1|2|3|4|5|6|0"},
      {"\xef\xbb\xbf \"p\" , 1, 2 ,3\r4\r5\r6\r0", true, "p|1|2|3|4|5|6|0"},
  };
  for (const auto& row : kRows) {
    contents() = row.file;
    ProgramSettings settings = touched();
    EXPECT_EQ(m_file.ReadSessionConfig(settings), row.whole) << row.file;
    EXPECT_EQ(summary(settings), row.read) << row.file;
  }
}

TEST_F(SessionConfigTest, MissingFileAndFailedSteps) {
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
    contents() = "\"/a/b.ini\"\r\n2\r\n3\r\n32\r\n1200\r\n900\r\n9600\r\n0\r\n";
    for (int damage = 0; damage < 3; ++damage) {
      contents()[random() % contents().size()] = kAlphabet[random() % kAlphabet.size()];
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

}  // namespace
}  // namespace qv3
