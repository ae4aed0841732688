#include "platform/disk/recoveryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "platform/disk/diskfiles.h"
#include "platform/disk/nexttake.h"
#include "recording/journalloader.h"
#include "tests/platform/eventloop.h"
#include "tests/platform/unprivileged.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

using Bytes = std::vector<std::uint8_t>;

const JournalHeader kHeader{
    SessionStart{43200, 9000}, true, 3, "/recordings/", "Take_007", "a.wav"};

SampleRecord record(std::size_t number) {
  SampleRecord record;
  record.Time = static_cast<std::int32_t>(number) * 20;
  record.Needle = static_cast<std::int16_t>(number * 40503);
  record.PacketType = "OPT"[number % 3];
  return record;
}

Bytes journalOf(std::size_t records) {
  Bytes bytes = encodeJournalHeader(kHeader);
  for (std::size_t number = 1; number <= records; ++number) {
    const RecordBytes encoded = encode(record(number));
    bytes.insert(bytes.end(), encoded.begin(), encoded.end());
  }
  return bytes;
}

class Recovery : public testing::Test {
 protected:
  void SetUp() override { qputenv("XDG_DATA_HOME", m_data.path().toUtf8()); }

  void leave(const std::string& name, const Bytes& bytes) const {
    fs::create_directories(m_path);
    std::ofstream(m_path / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
  }
  /// A file where the folder should be.
  void standInTheWay() const {
    fs::remove_all(m_path);
    fs::create_directories(m_path.parent_path());
    std::ofstream(m_path).put('x');
  }

  std::vector<std::string> left() const { return m_files.files(m_path); }

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
  const Bytes whole = journalOf(3);
  const auto header = whole.size() - 3 * kRecordSize;
  const auto cut = [&](std::size_t size) {
    return Bytes(whole.begin(), whole.begin() + static_cast<long>(size));
  };
  Bytes damaged = whole;
  damaged[20] ^= 1;
  Bytes hollow = whole;
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
  EXPECT_EQ(found.offers[0].header, kHeader);
  EXPECT_EQ(found.offers[0].journal->spoolPath(), m_path / "a.wav");
  EXPECT_THAT(found.unreadable,
              UnorderedElementsAre(m_path / "damaged.journal", m_path / "hollow.journal"));
  EXPECT_THAT(left(), UnorderedElementsAre("a.journal", "a.wav", "damaged.journal", "damaged.wav",
                                           "hollow.journal", "old.journal~"));
  EXPECT_THAT(m_folder.scan().offers, IsEmpty()) << "the first offer holds it";
}

TEST_F(Recovery, AJournalThatMayNotBeReadIsTold) {
  leave("a.journal", journalOf(3));
  fs::create_symlink("nowhere", m_path / "gone.journal");
  fs::permissions(m_path / "a.journal", fs::perms::none);
  fs::permissions(m_root.path().toStdString(), fs::perms::all);
  const test::Unprivileged user;
  const auto found = m_folder.scan();
  EXPECT_THAT(found.offers, IsEmpty());
  EXPECT_THAT(found.unreadable, testing::ElementsAre(m_path / "a.journal"));
}

TEST_F(Recovery, AnOfferIsRecoveredDiscardedOrLeftForLater) {
  leave("a.journal", journalOf(3));
  leave("a.wav", {1});
  for (int later = 0; later < 2; ++later) {
    const auto found = m_folder.scan();
    ASSERT_THAT(found.offers, SizeIs(1));
    const Take take = recover(found.offers[0]);
    ASSERT_EQ(take.records.count(), 3U);
    for (std::size_t n = 1; n <= 3; ++n) EXPECT_EQ(take.records.at(n), record(n));
  }
  m_folder.scan().offers.at(0).journal->moveToTrash();
  EXPECT_THAT(left(), IsEmpty());
  EXPECT_THAT(m_files.files((m_data.path() + "/Trash/files").toStdString()),
              UnorderedElementsAre("a.journal", "a.wav"));

  leave("b.journal", journalOf(1));
  m_folder.scan().offers.at(0).journal->remove();
  EXPECT_THAT(left(), IsEmpty());
}

TEST_F(Recovery, ARunningRecordingIsNobodyElsesAndLeavesNothingOnceSaved) {
  leave("t.wav", {1});
  const auto one = m_folder.create("t", {});
  const auto two = m_folder.create("t", {});
  ASSERT_TRUE(one.journal && two.journal) << one.error << two.error;
  EXPECT_EQ(one.journal->spoolName(), "t-2.wav") << "sound that is there is not recorded over";
  EXPECT_EQ(two.journal->spoolName(), "t-3.wav");
  one.journal->append(journalOf(2));
  leave("t-2.wav", {1, 2});
  one.journal->finish();
  EXPECT_TRUE(test::eventually([&] { return one.journal->writer()->synced() > 0; }));
  EXPECT_THAT(m_folder.scan().offers, IsEmpty());
  EXPECT_THAT(left(), UnorderedElementsAre("t.wav", "t-2.journal", "t-2.wav", "t-3.journal"));
  one.journal->remove();
  EXPECT_THAT(left(), UnorderedElementsAre("t.wav", "t-3.journal"));
}

TEST_F(Recovery, SoundIsOwnedFromItsFirstByte) {
  std::vector<std::string> failures;
  const auto failed = [&](const std::string& reason) { failures.push_back(reason); };
  const auto stamp = [] { return std::string("t"); };
  {
    NextTake next(m_folder, stamp, failed);
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

  standInTheWay();
  NextTake next(m_folder, stamp, failed);
  EXPECT_EQ(next.nextSpool(), "");
  next.newJournal()->append({1, 2, 3});
  ASSERT_THAT(failures, SizeIs(1)) << "the device says itself that it has no place";
  EXPECT_THAT(failures[0], testing::HasSubstr("could not be created"));
}

}  // namespace
}  // namespace qv3
