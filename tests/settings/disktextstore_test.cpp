#include "settings/disktextstore.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace qv3 {
namespace {

namespace fs = std::filesystem;

class DiskTextStoreTest : public testing::Test {
 protected:
  DiskTextStoreTest()
      : m_folder(fs::temp_directory_path() /
                 ("qv3-store-" + std::to_string(std::random_device()()))) {
    fs::create_directory(m_folder);
  }
  ~DiskTextStoreTest() override { fs::remove_all(m_folder); }

  std::string path(const std::string& name) const { return (m_folder / name).string(); }

  std::size_t entries() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()));
  }

  fs::path m_folder;
  DiskTextStore m_store;
};

TEST_F(DiskTextStoreTest, ReplacesWholeFilesAndLeavesNothingBeside) {
  // A name need not be valid UTF-8.
  for (const std::string& name : {path("caf\xc3\xa9.ini"), path("caf\xe9.ini")}) {
    EXPECT_FALSE(m_store.exists(name));
    EXPECT_EQ(m_store.read(name), std::nullopt);
    for (const std::string& contents :
         {std::string(10000, 'x'), std::string("a\r\n\0b", 5), std::string()}) {
      ASSERT_TRUE(m_store.replace(name, contents).ok());
      EXPECT_TRUE(m_store.exists(name));
      EXPECT_EQ(m_store.read(name), contents);
    }
  }
  EXPECT_EQ(entries(), 2U);
}

TEST_F(DiskTextStoreTest, FailuresHaveAReasonAndLeaveNothingBehind) {
  fs::create_directory(path("folder"));
  EXPECT_FALSE(m_store.exists(path("folder")));
  EXPECT_EQ(m_store.read(path("folder")), std::nullopt);
  EXPECT_FALSE(m_store.exists(""));
  for (const std::string& name : {path("folder"), path("none/a.ini"), std::string()}) {
    EXPECT_NE(m_store.replace(name, "x").error, "") << name;
  }
  EXPECT_EQ(entries(), 1U);
}

TEST_F(DiskTextStoreTest, LinkAndPermissionsStay) {
  const std::string target = path("target.ini");
  ASSERT_TRUE(m_store.replace(target, "old").ok());
  fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("target.ini", path("link.ini"));
  ASSERT_TRUE(m_store.replace(path("link.ini"), "new").ok());
  EXPECT_TRUE(fs::is_symlink(path("link.ini")));
  EXPECT_EQ(m_store.read(target), "new");
  EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(DiskTextStoreTest, ProtectedFileIsLeftAlone) {
  const std::string name = path("a.ini");
  ASSERT_TRUE(m_store.replace(name, "mine").ok());
  fs::permissions(name, fs::perms::owner_read);
  EXPECT_FALSE(m_store.replace(name, "x").ok());
  EXPECT_EQ(m_store.read(name), "mine");
}

}  // namespace
}  // namespace qv3
