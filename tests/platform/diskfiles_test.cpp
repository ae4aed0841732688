#include "platform/disk/diskfiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/platform/eventloop.h"
#include "tests/platform/unprivileged.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

using test::eventually;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr std::size_t kLong = 600'000;  // more than two blocks

class Disk : public testing::Test {
 protected:
  Disk() {
    qputenv("XDG_DATA_HOME", m_share.c_str());
    fs::create_directory(m_path / "save");
    write("spool", "head" + std::string(kLong, 's'));
  }

  void write(const std::string& name, const std::string& text) const {
    std::ofstream(m_path / name, std::ios::binary) << text;
  }
  std::string read(const fs::path& path) const {
    std::ifstream file(m_path / path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::string saveFolder() const { return m_path / "save/"; }
  std::vector<std::string> saved() const { return m_files.files(saveFolder()); }

  static FileWork::State finish(NewFile& file) {
    file.finish();
    eventually([&] { return file.state() != FileWork::State::Busy; });
    return file.state();
  }

  QTemporaryDir m_root;
  QTemporaryDir m_data;
  fs::path m_share{m_data.path().toStdString() + "/new/share"};
  fs::path m_path{m_root.path().toStdString()};
  DiskFiles m_files;
};

TEST_F(Disk, ANewFileHoldsWhatItWasHandedInItsOrder) {
  const auto file = m_files.createTemporary(saveFolder());
  file->write({'a', 'b'});
  file->copyFrom(m_path / "spool", 4, kLong);
  file->writeZeros(kLong);
  file->write({'z'});
  ASSERT_EQ(finish(*file), FileWork::State::Finished) << file->error();
  EXPECT_EQ(file->written(), 2 * kLong + 3);
  EXPECT_TRUE(file->moveTo(saveFolder() + "x").ok());
  EXPECT_THAT(saved(), testing::ElementsAre("x"));
  EXPECT_TRUE(read("save/x") == "ab" + std::string(kLong, 's') + std::string(kLong, '\0') + "z");
  const auto sync = m_files.syncFolder(saveFolder());
  EXPECT_TRUE(eventually([&] { return sync->state() == FileWork::State::Finished; }));
}

TEST_F(Disk, AFileThatCannotBeMadeSaysWhyAndLeavesNothingBehind) {
  {
    const auto givenUp = m_files.createTemporary(saveFolder());
    givenUp->copyFrom(m_path / "spool", 0, kLong);
    EXPECT_FALSE(saved().empty());
  }
  EXPECT_THAT(saved(), IsEmpty());
  const struct {
    std::string source;
    std::uint64_t length;
    const char* reason;
  } rows[] = {{"spool", kLong + 5, "ends too early"},
              {"save", 1, "Is a directory"},
              {"gone", 1, "No such file"}};
  for (const auto& row : rows) {
    const auto file = m_files.createTemporary(saveFolder());
    file->copyFrom(m_path / row.source, 0, row.length);
    EXPECT_EQ(finish(*file), FileWork::State::Failed) << row.source;
    EXPECT_THAT(file->error(), testing::HasSubstr(row.reason));
  }
  EXPECT_THAT(saved(), IsEmpty());

  fs::permissions(m_path, fs::perms::all);
  fs::permissions(m_path / "save", fs::perms(0555));
  const test::Unprivileged user;
  EXPECT_EQ(m_files.createTemporary(saveFolder())->error(), "Permission denied");
  EXPECT_EQ(m_files.makeFolder(saveFolder() + "sub/").error, "Permission denied");
  EXPECT_TRUE(m_files.makeFolder(m_path / "new/er/").ok());
}

TEST_F(Disk, ReadsWholeFilesAndWhatCannotBeReadEnds) {
  std::string text;
  while (text.size() < 3'000'000)
    text += std::to_string(text.size()) + ' ';  // not read ahead whole
  write("long", text);
  const auto contents = [this](const std::string& name) {
    std::string taken;
    const auto file = m_files.read(m_path / name);
    EXPECT_TRUE(eventually([&] {
      for (auto bytes = file->take(); !bytes.empty(); bytes = file->take()) {
        taken.append(bytes.begin(), bytes.end());
      }
      return file->atEnd();
    })) << name;
    return taken;
  };
  EXPECT_TRUE(contents("long") == text);
  EXPECT_EQ(contents("missing"), "");
  EXPECT_EQ(contents("save"), "") << "a folder";
  m_files.read(m_path / "long");  // given up at once
}

TEST_F(Disk, NothingIsEverRenamedOver) {
  write("a", "1");
  write("b", "2");
  fs::create_symlink("nowhere", m_path / "link");
  EXPECT_TRUE(m_files.exists(m_path / "link"));
  for (const char* name : {"b", "link"}) {
    EXPECT_FALSE(m_files.rename(m_path / "a", m_path / name).ok()) << name;
  }
  EXPECT_TRUE(m_files.rename(m_path / "a", m_path / "c").ok());
  EXPECT_EQ(read("b") + read("c"), "21");
}

TEST_F(Disk, WhatWentToTheTrashComesBack) {
  const Moved moved = m_files.moveToTrash(m_path / "spool");
  ASSERT_TRUE(moved.ok()) << moved.error;
  EXPECT_EQ(moved.place, m_share / "Trash/files/spool");
  EXPECT_FALSE(m_files.exists(m_path / "spool"));
  write("spool", "new");
  EXPECT_FALSE(m_files.takeFromTrash(moved.place, m_path / "spool").ok());
  EXPECT_TRUE(m_files.takeFromTrash(moved.place, m_path / "old").ok());
  EXPECT_EQ(read("old").size(), 4 + kLong);
  EXPECT_TRUE(fs::is_empty(m_share / "Trash/info"));

  fs::remove_all(m_share.parent_path());
  std::ofstream(m_share.parent_path()) << "in the way";
  EXPECT_FALSE(m_files.moveToTrash(m_path / "old").ok());
  EXPECT_TRUE(m_files.exists(m_path / "old"));
}

TEST_F(Disk, FoldersTellFilesAndRoom) {
  write("save/plain", "");
  fs::create_directory(m_path / "save/folder");
  fs::create_symlink("nowhere", m_path / "save/dangling");
  fs::create_symlink(m_path, m_path / "save/away");
  EXPECT_THAT(saved(), UnorderedElementsAre("plain", "dangling"));
  EXPECT_EQ(m_files.size(m_path / "save/plain"), 0U);
  EXPECT_EQ(m_files.size(m_path / "save/folder"), std::nullopt);
  const auto here = m_files.room(m_path);
  const auto there = m_files.room(m_path / "save");
  ASSERT_TRUE(here && there);
  EXPECT_EQ(here->disk, there->disk);
  EXPECT_NE(here->disk, m_files.room("/proc")->disk);
  EXPECT_EQ(m_files.room("/proc")->freeBytes, 0U);
  EXPECT_FALSE(m_files.room(m_path / "gone"));
  EXPECT_FALSE(m_files.room(m_path / "spool"));
}

}  // namespace
}  // namespace qv3
