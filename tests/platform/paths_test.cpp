#include "platform/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "tests/platform/unprivileged.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

class Folders : public testing::Test {
 protected:
  Folders() { fs::create_directories(m_root / "bin"); }

  void touch(const std::string& name) {
    fs::create_directories((m_root / name).parent_path());
    std::ofstream(m_root / name).put('x');
  }
  std::string in(const char* name) const { return (m_root / name).string(); }
  FolderSources sources(const std::string& option = "", const std::string& variable = "") const {
    return {in("bin"), option, variable, in("config"), in("user")};
  }
  std::string createState(const char* folder) const {
    return ProgramFolders(sources(in(folder))).createState();
  }

  QTemporaryDir m_temporary;
  fs::path m_root{m_temporary.path().toStdString()};
};

TEST_F(Folders, StateIsInTheFirstPlaceThatIsNamedOrFits) {
  EXPECT_EQ(ProgramFolders(sources()).state(), in("bin"));
  EXPECT_EQ(ProgramFolders(sources("", in("variable/"))).state(), in("variable"));
  EXPECT_EQ(ProgramFolders(sources(in("option/x/.."), in("variable"))).state(), in("option"));
  EXPECT_EQ(ProgramFolders(sources("here")).state(), (fs::current_path() / "here").string());

  fs::create_directories(m_root / "share/qv3-varnel");  // the program is installed
  FolderSources installed = sources();
  EXPECT_EQ(ProgramFolders(installed).state(), in("config/qv3-varnel"));
  for (const char* unusable : {"relative", ""}) {
    installed.configHome = unusable;
    EXPECT_EQ(ProgramFolders(installed).state(), in("user/.config/qv3-varnel"));
  }
}

TEST_F(Folders, AReadOnlyProgramFolderIsNoPlaceForState) {
  fs::permissions(m_root / "bin", fs::perms::owner_read | fs::perms::owner_exec);
  const test::Unprivileged user;
  EXPECT_EQ(ProgramFolders(sources()).state(), in("config/qv3-varnel"));
}

TEST_F(Folders, TheStateFolderIsCreatedOrTheReasonTold) {
  EXPECT_EQ(createState("a/b/c"), "");
  EXPECT_TRUE(fs::is_directory(m_root / "a/b/c"));
  EXPECT_EQ(createState("a/b/c"), "") << "it may be there already";
  touch("file");
  EXPECT_NE(createState("file"), "");

  fs::permissions(m_root / "a/b/c", fs::perms::owner_read | fs::perms::owner_exec);
  fs::permissions(m_root, fs::perms::others_exec, fs::perm_options::add);
  const test::Unprivileged user;
  const struct {
    const char* folder;
    const char* reason;
  } rows[] = {{"file/state", "could not be created: Not a directory"},
              {"a/b/c", "cannot be written to"},
              {"a/b/c/d", "Permission denied"}};
  for (const auto& row : rows) EXPECT_THAT(createState(row.folder), testing::HasSubstr(row.reason));
}

TEST_F(Folders, DataIsBesideTheExecutableOrShared) {
  for (const char* file : {"bin/both", "share/qv3-varnel/both", "share/qv3-varnel/samples/one"}) {
    touch(file);
  }
  const ProgramFolders folders(sources());
  EXPECT_EQ(folders.data("both"), in("bin/both"));
  EXPECT_EQ(folders.data("samples"), in("share/qv3-varnel/samples"));
  EXPECT_EQ(folders.data("none"), in("bin/none"));
}

}  // namespace
}  // namespace qv3
