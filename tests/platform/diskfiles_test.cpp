#include "platform/disk/diskfiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QTemporaryDir>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "recording/savesession.h"
#include "recording/setaside.h"
#include "tests/platform/eventloop.h"
#include "tests/platform/unprivileged.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

using test::eventually;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr std::size_t kSpoolSize = 600'000;  // more than two blocks

/// While it lives no file of this process grows beyond so many bytes.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit{bytes, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit m_before{};
  void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

class Disk : public testing::Test {
 protected:
  Disk() {
    qputenv("XDG_DATA_HOME", m_share.c_str());
    write("spool", "head" + std::string(kSpoolSize, 's'));
    fs::create_directory(m_path / "save");
    for (int n = 0; n < 9000; ++n) {
      SampleRecord record;
      record.Time = n;
      record.PacketType = 'P';
      m_take.records.append(record);
    }
    m_take.sound = {TakeSound::Kind::Spool, (m_path / "spool").string(), 4, kSpoolSize};
  }

  void write(const std::string& name, const std::string& text) {
    std::ofstream(m_path / name, std::ios::binary) << text;
  }

  static std::string read(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::string save(const std::string& name) {
    SaveSession session(m_files, m_take, {(m_path / "save").string(), name}, {});
    EXPECT_TRUE(eventually([&] { return session.step() != SaveSession::State::Saving; }));
    return session.failure();
  }

  std::vector<std::string> saved() const { return m_files.files(m_path / "save"); }

  QTemporaryDir m_root;
  QTemporaryDir m_data;
  fs::path m_share{m_data.path().toStdString() + "/new/share"};
  fs::path m_path{m_root.path().toStdString()};
  DiskFiles m_files;
  Take m_take;
};

TEST_F(Disk, SavesBothFilesAndMovesOldOnesToTheTrash) {
  write("save/x.qvd", "old data");
  write("save/x.mp3", "old sound");
  ASSERT_EQ(save("x"), "");
  EXPECT_THAT(saved(), UnorderedElementsAre("x.qvd", "x.wav"));
  const auto data = fileBytes(m_take.records, m_take.start, {});
  EXPECT_EQ(read(m_path / "save/x.qvd"), std::string(data.begin(), data.end()));
  const std::string wav = read(m_path / "save/x.wav");
  ASSERT_EQ(wav.size(), 44 + kSpoolSize);
  EXPECT_EQ(wav.find_first_not_of('s', 44), std::string::npos);
  EXPECT_EQ(read(m_share / "Trash/files/x.mp3"), "old sound");
}

TEST_F(Disk, WithoutATrashTheOldFilesStayBesideTheNew) {
  write("save/x.qvd", "old data");
  std::ofstream(m_share.parent_path()) << "in the way";
  ASSERT_EQ(save("x"), "");
  EXPECT_THAT(saved(), UnorderedElementsAre("x.qvd", "x.qvd~", "x.wav"));
}

TEST_F(Disk, AFileThatMayNotGrowLeavesNothingBehind) {
  write("save/x.qvd", "old data");
  for (const rlim_t limit : {0, 1, 43, 44, 45, 179999, 262187, 262188, 524332, 600043}) {
    const FileSizeLimit full(limit);
    EXPECT_EQ(save("x"), "The recording could not be saved: File too large") << limit;
    EXPECT_THAT(saved(), ElementsAre("x.qvd")) << limit;
  }
  EXPECT_EQ(read(m_path / "save/x.qvd"), "old data");
  EXPECT_EQ(save("x"), "");
}

TEST_F(Disk, AFolderOrADiskThatRefusesSaysWhy) {
  fs::permissions(m_path, fs::perms::all);
  fs::permissions(m_path / "save", fs::perms(0555));
  {
    const test::Unprivileged user;
    EXPECT_EQ(save("x"), "The recording could not be saved: Permission denied");
    EXPECT_EQ(save("sub/x"), "The recording could not be saved: Permission denied");
  }
  write("file", "");
  EXPECT_THAT(save("../file/x"), testing::HasSubstr("could not be saved: "));
  fs::permissions(m_path / "save", fs::perms::all);
  m_take.sound.path = m_path.string();
  m_take.sound.kind = TakeSound::Kind::Wav;
  EXPECT_THAT(save("x"), testing::HasSubstr("its sound is gone"));
  EXPECT_TRUE(saved().empty());
  m_take.sound = {};
  EXPECT_EQ(save("new/er/x"), "");
  EXPECT_TRUE(m_files.exists(m_path / "save/new/er/x.qvd"));
}

TEST_F(Disk, AGivenUpSaveLeavesNothingBehind) {
  {
    SaveSession session(m_files, m_take, {(m_path / "save").string(), "x"}, {});
    for (int n = 0; n < 3; ++n) session.step();
    EXPECT_FALSE(saved().empty());
  }
  EXPECT_TRUE(saved().empty());
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
  const std::string a = m_path / "a";
  EXPECT_FALSE(m_files.rename(a, m_path / "b").ok());
  fs::create_symlink("nowhere", m_path / "link");
  EXPECT_TRUE(m_files.exists(m_path / "link"));
  EXPECT_FALSE(m_files.rename(a, m_path / "link").ok());
  EXPECT_TRUE(m_files.rename(a, m_path / "c").ok());
  EXPECT_EQ(read(m_path / "b") + read(m_path / "c"), "21");
}

TEST_F(Disk, WhatWasSetAsideComesBack) {
  write("save/x.qvd", "old");
  SetAside aside(m_files);
  ASSERT_TRUE(aside.add(m_path / "save/x.qvd").ok());
  EXPECT_TRUE(saved().empty());
  aside.undo();
  EXPECT_EQ(read(m_path / "save/x.qvd"), "old");
  EXPECT_TRUE(fs::is_empty(m_share / "Trash/info"));
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
