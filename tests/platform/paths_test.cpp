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

using testing::HasSubstr;

class Folders : public testing::Test {
 protected:
  Folders() { fs::create_directories(m_root / "bin"); }

  void touch(const fs::path& path) {
    fs::create_directories(path.parent_path());
    std::ofstream(path).put('x');
  }

  FolderSources sources() const {
    return {(m_root / "bin").string(), "", "", (m_root / "config").string(),
            (m_root / "user").string()};
  }

  QTemporaryDir m_temporary;
  fs::path m_root{m_temporary.path().toStdString()};
};

TEST_F(Folders, StateIsInTheFirstPlaceThatIsNamedOrFits) {
  const std::string executable = (m_root / "bin").string();
  const std::string option = (m_root / "option").string();
  const std::string variable = (m_root / "variable").string();
  FolderSources from = sources();
  EXPECT_EQ(ProgramFolders(from).state(), executable);
  from.homeVariable = variable + "/";
  EXPECT_EQ(ProgramFolders(from).state(), variable);
  from.homeOption = option + "/x/..";
  EXPECT_EQ(ProgramFolders(from).state(), option);
  from.homeOption = "here";
  EXPECT_EQ(ProgramFolders(from).state(), (fs::current_path() / "here").string());
}

TEST_F(Folders, AnInstalledProgramKeepsItsStateInTheConfigFolder) {
  fs::create_directories(m_root / "share/qv3-varnel");
  FolderSources from = sources();
  EXPECT_EQ(ProgramFolders(from).state(), (m_root / "config/qv3-varnel").string());
  const std::string fallback = (m_root / "user/.config/qv3-varnel").string();
  from.configHome = "relative";
  EXPECT_EQ(ProgramFolders(from).state(), fallback);
  from.configHome.clear();
  EXPECT_EQ(ProgramFolders(from).state(), fallback);
}

TEST_F(Folders, AReadOnlyProgramFolderIsNoPlaceForState) {
  fs::permissions(m_root / "bin", fs::perms::owner_read | fs::perms::owner_exec);
  const test::Unprivileged user;
  EXPECT_EQ(ProgramFolders(sources()).state(), (m_root / "config/qv3-varnel").string());
}

TEST_F(Folders, TheStateFolderIsCreatedOrTheReasonTold) {
  FolderSources from = sources();
  from.homeOption = (m_root / "a/b/c").string();
  EXPECT_EQ(ProgramFolders(from).createState(), "");
  EXPECT_TRUE(fs::is_directory(m_root / "a/b/c"));
  EXPECT_EQ(ProgramFolders(from).createState(), "") << "it may be there already";

  touch(m_root / "file");
  from.homeOption = (m_root / "file/state").string();
  EXPECT_THAT(ProgramFolders(from).createState(),
              HasSubstr("could not be created: Not a directory"));
  from.homeOption = (m_root / "file").string();
  EXPECT_NE(ProgramFolders(from).createState(), "");

  fs::permissions(m_root / "a/b/c", fs::perms::owner_read | fs::perms::owner_exec);
  fs::permissions(m_root, fs::perms::others_exec, fs::perm_options::add);
  from.homeOption = (m_root / "a/b/c").string();
  const test::Unprivileged user;
  EXPECT_THAT(ProgramFolders(from).createState(), HasSubstr("cannot be written to"));
  from.homeOption = (m_root / "a/b/c/d").string();
  EXPECT_THAT(ProgramFolders(from).createState(), HasSubstr("Permission denied"));
}

TEST_F(Folders, DataIsBesideTheExecutableOrShared) {
  touch(m_root / "bin/both");
  touch(m_root / "share/qv3-varnel/both");
  touch(m_root / "share/qv3-varnel/samples/one.qvd");
  const ProgramFolders folders(sources());
  EXPECT_EQ(folders.data("both"), (m_root / "bin/both").string());
  EXPECT_EQ(folders.data("samples"), (m_root / "share/qv3-varnel/samples").string());
  EXPECT_EQ(folders.data("none"), (m_root / "bin/none").string());
}

}  // namespace
}  // namespace qv3
