#include "platform/disk/recoveryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>

#include <fcntl.h>
#include <QTemporaryDir>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>

#include "platform/disk/diskfiles.h"
#include "platform/disk/nexttake.h"
#include "recording/journalloader.h"
#include "tests/platform/eventloop.h"
#include "tests/platform/victimrecords.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

using test::eventually;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

class Recovery : public testing::Test {
 protected:
  void SetUp() override { qputenv("XDG_DATA_HOME", m_data.path().toUtf8()); }

  void leave(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    fs::create_directories(m_path);
    std::ofstream(m_path / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
  }

  std::vector<std::string> left() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_path))
      names.push_back(entry.path().filename());
    return names;
  }

  static std::vector<std::uint8_t> journalOf(std::size_t records) {
    auto bytes = encodeJournalHeader(test::victimHeader("a.wav"));
    for (std::size_t number = 1; number <= records; ++number) {
      const RecordBytes record = encode(test::victimRecord(number));
      bytes.insert(bytes.end(), record.begin(), record.end());
    }
    return bytes;
  }

  static Take recover(const RecoveryOffer& offer) {
    JournalLoader loader(offer.open(), offer.size, {});
    while (loader.step(4096) == JournalLoader::State::Loading) {
    }
    EXPECT_EQ(loader.step(1), JournalLoader::State::Done);
    return loader.takeRecovered();
  }

  QTemporaryDir m_root;
  QTemporaryDir m_data;
  fs::path m_path{fs::path(m_root.path().toStdString()) / "state" / "recovery"};
  DiskFiles m_files;
  RecoveryFolder m_folder{m_path.string(), m_files};
};

TEST_F(Recovery, WhatIsLeftBehindIsOfferedRemovedOrKept) {
  EXPECT_THAT(m_folder.scan().offers, IsEmpty()) << "no folder yet";
  const auto whole = journalOf(3);
  const auto header = whole.size() - 3 * kRecordSize;
  const auto cut = [&](std::size_t size) {
    return std::vector<std::uint8_t>(whole.begin(), whole.begin() + static_cast<long>(size));
  };
  auto damaged = whole;
  damaged[20] ^= 1;
  auto hollow = whole;
  std::fill(hollow.begin() + static_cast<long>(header), hollow.end(), std::uint8_t{0});
  for (const char* sound : {"a.wav", "empty.wav", "half.wav", "bare.wav", "damaged.wav"}) {
    leave(sound, {1, 2, 3});
  }
  leave("a.journal", cut(whole.size() - 1));
  leave("empty.journal", {});
  leave("half.journal", cut(header - 1));
  leave("bare.journal", cut(header + kRecordSize - 1));
  leave("damaged.journal", damaged);
  leave("hollow.journal", hollow);
  leave("old.journal~", whole);

  const auto found = m_folder.scan();
  ASSERT_THAT(found.offers, SizeIs(1));
  EXPECT_EQ(found.offers[0].samples, 2U);
  EXPECT_EQ(found.offers[0].header, test::victimHeader("a.wav"));
  EXPECT_EQ(found.offers[0].journal->spoolPath(), m_path / "a.wav");
  EXPECT_THAT(found.unreadable,
              UnorderedElementsAre(m_path / "damaged.journal", m_path / "hollow.journal"));
  EXPECT_THAT(left(), UnorderedElementsAre("a.journal", "a.wav", "damaged.journal", "damaged.wav",
                                           "hollow.journal", "old.journal~"));
  EXPECT_THAT(m_folder.scan().offers, IsEmpty()) << "the first offer holds it";
}

TEST_F(Recovery, AnOfferIsRecoveredDiscardedOrLeftForLater) {
  leave("a.journal", journalOf(3));
  leave("a.wav", {1});
  for (int later = 0; later < 2; ++later) {
    const auto found = m_folder.scan();
    ASSERT_THAT(found.offers, SizeIs(1));
    EXPECT_EQ(recover(found.offers[0]).records.count(), 3U);
  }
  m_folder.scan().offers.at(0).journal->moveToTrash();
  EXPECT_THAT(left(), IsEmpty());
  const fs::path trash = fs::path(m_data.path().toStdString()) / "Trash" / "files";
  EXPECT_TRUE(fs::exists(trash / "a.journal"));
  EXPECT_TRUE(fs::exists(trash / "a.wav"));

  leave("b.journal", journalOf(1));
  m_folder.scan().offers.at(0).journal->remove();
  EXPECT_THAT(left(), IsEmpty());
}

TEST_F(Recovery, ARunningRecordingIsNobodyElses) {
  const auto one = m_folder.create("17-01-05__14.03.27", {});
  const auto two = m_folder.create("17-01-05__14.03.27", {});
  ASSERT_TRUE(one.journal && two.journal) << one.error << two.error;
  EXPECT_EQ(one.journal->spoolName(), "17-01-05__14.03.27.wav");
  EXPECT_EQ(two.journal->spoolName(), "17-01-05__14.03.27-2.wav");
  const auto found = m_folder.scan();
  EXPECT_THAT(found.offers, IsEmpty());
  EXPECT_THAT(left(), SizeIs(2));
}

TEST_F(Recovery, ASavedRecordingLeavesNothing) {
  auto created = m_folder.create("a", {});
  ASSERT_TRUE(created.journal) << created.error;
  created.journal->append(journalOf(2));
  leave("a.wav", {1, 2});
  created.journal->finish();
  EXPECT_TRUE(eventually([&] { return created.journal->writer()->synced() > 0; }));
  created.journal->remove();
  EXPECT_THAT(left(), IsEmpty());
  leave("s.wav", {1});
  const auto other = m_folder.create("s", {});
  EXPECT_EQ(other.journal->spoolName(), "s-2.wav") << "sound that is there is not recorded over";
}

TEST_F(Recovery, AFolderThatCannotBeMadeIsTold) {
  fs::create_directories(m_path.parent_path());
  std::ofstream(m_path).put('x');
  const auto created = m_folder.create("a", {});
  EXPECT_FALSE(created.journal);
  EXPECT_THAT(created.error, testing::HasSubstr("could not be created"));
}

TEST_F(Recovery, SoundIsOwnedFromItsFirstByte) {
  std::vector<std::string> failures;
  const auto failed = [&](const std::string& reason) { failures.push_back(reason); };
  {
    NextTake next(
        m_folder, [] { return "t"; }, failed);
    leave(fs::path(next.nextSpool()).filename(), {1});
    EXPECT_THAT(left(), UnorderedElementsAre("t.journal", "t.wav"));
    leave(fs::path(next.nextSpool()).filename(), {2});
    EXPECT_THAT(left(), UnorderedElementsAre("t.journal", "t.wav")) << "the lead-in was given up";
    const auto journal = next.newJournal();
    const auto silent = next.newJournal();
    EXPECT_THAT(left(), UnorderedElementsAre("t.journal", "t.wav", "t-2.journal"));
    journal->remove();
    silent->remove();
    leave(fs::path(next.nextSpool()).filename(), {3});
  }
  EXPECT_THAT(left(), IsEmpty());
  EXPECT_THAT(failures, IsEmpty());

  fs::remove_all(m_path);
  std::ofstream(m_path).put('x');
  NextTake next(
      m_folder, [] { return "t"; }, failed);
  EXPECT_EQ(next.nextSpool(), "");
  next.newJournal()->append({1, 2, 3});
  EXPECT_THAT(failures, SizeIs(1)) << "the device says itself that it has no place";
}

/// A program that records at full speed, and how far it says it is.
class Victim {
 public:
  Victim(const std::string& folder, const std::string& counter) {
    std::ofstream(counter) << std::string(sizeof(std::uint64_t), '\0');
    const FileDescriptor file(open(counter.c_str(), O_RDONLY | O_CLOEXEC));
    m_memory = mmap(nullptr, sizeof(std::uint64_t), PROT_READ, MAP_SHARED, file.number(), 0);
    std::string program = JOURNAL_VICTIM;
    std::string first = folder;
    std::string second = counter;
    char* arguments[] = {program.data(), first.data(), second.data(), nullptr};
    if (posix_spawn(&m_process, JOURNAL_VICTIM, nullptr, nullptr, arguments, environ) != 0)
      m_process = 0;
  }
  ~Victim() {
    if (m_process > 0) kill();
    munmap(m_memory, sizeof(std::uint64_t));
  }
  Victim(const Victim&) = delete;
  Victim& operator=(const Victim&) = delete;

  std::uint64_t handedOver() const {
    return static_cast<const std::atomic<std::uint64_t>*>(m_memory)->load();
  }

  void kill() {
    ::kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    m_process = 0;
  }

 private:
  pid_t m_process = 0;
  void* m_memory = nullptr;
};

TEST_F(Recovery, AKilledProgramLosesAtMostOneSample) {
  const int rounds = qEnvironmentVariableIsSet("QV3_DEEP") ? 100 : 10;
  std::mt19937 random{std::random_device{}()};
  for (int round = 0; round < rounds; ++round) {
    const std::uint64_t moment = random() % 5000 + 1;
    Victim victim(m_path.string(), (m_path.parent_path().parent_path() / "count").string());
    ASSERT_TRUE(eventually([&] { return victim.handedOver() >= moment; })) << moment;
    EXPECT_THAT(m_folder.scan().offers, IsEmpty()) << "it still runs";
    victim.kill();

    const auto found = m_folder.scan();
    ASSERT_THAT(found.offers, SizeIs(1)) << moment;
    EXPECT_EQ(found.offers[0].header, test::victimHeader("victim.wav"));
    const Take take = recover(found.offers[0]);
    ASSERT_GE(take.records.count() + 1, victim.handedOver());
    for (std::size_t number = 1; number <= take.records.count(); ++number) {
      ASSERT_EQ(take.records.at(number), test::victimRecord(number));
    }
    found.offers[0].journal->remove();
    ASSERT_THAT(left(), IsEmpty());
  }
}

}  // namespace
}  // namespace qv3
