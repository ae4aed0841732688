#include "platform/disk/journalwriter.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <limits>
#include <mutex>

#include "tests/platform/eventloop.h"

namespace qv3 {
namespace {

using test::eventually;

constexpr std::size_t kRecord = 20;
constexpr std::size_t kRecords = 1000;

/// In memory; fails after so many bytes, and waits for as long as somebody else holds one of the
/// gates. To be asked for its contents when nobody writes any more.
class MemoryAppendFile final : public AppendFile {
 public:
  FileResult append(std::span<const std::uint8_t> bytes) override {
    const std::lock_guard pass(appending);
    const std::size_t fitting = std::min(bytes.size(), room);
    contents.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(fitting));
    room -= fitting;
    return fitting == bytes.size() ? FileResult{} : FileResult{"the disk is full"};
  }
  FileResult sync() override {
    const std::lock_guard pass(syncing);
    return {syncError};
  }

  std::mutex appending;
  std::mutex syncing;
  std::size_t room = std::numeric_limits<std::size_t>::max();
  std::string contents;
  std::string syncError;
};

class Journal : public testing::Test {
 protected:
  JournalWriter::Failed note() {
    return [this](const std::string& reason) { m_failures.push_back(reason); };
  }

  static std::vector<std::uint8_t> record(std::size_t number) {
    return std::vector<std::uint8_t>(kRecord, static_cast<std::uint8_t>(number));
  }

  static void append(JournalWriter& writer, std::size_t count) {
    for (std::size_t number = 0; number < count; ++number) writer.append(record(number));
  }

  static void expectWhole(const std::string& contents) {
    ASSERT_EQ(contents.size(), kRecords * kRecord);
    for (std::size_t at = 0; at < contents.size(); ++at) {
      ASSERT_EQ(static_cast<std::uint8_t>(contents[at]), static_cast<std::uint8_t>(at / kRecord));
    }
  }

  std::shared_ptr<MemoryAppendFile> m_file = std::make_shared<MemoryAppendFile>();
  std::vector<std::string> m_failures;
};

TEST_F(Journal, EverythingIsWrittenInOrderThoughTheSyncHangs) {
  m_file->syncing.lock();
  {
    JournalWriter writer(m_file, note());
    append(writer, kRecords);
    EXPECT_TRUE(eventually([&] { return writer.written() == kRecords * kRecord; }));
    EXPECT_EQ(writer.synced(), 0U);
  }
  expectWhole(m_file->contents);
  m_file->syncing.unlock();
}

TEST_F(Journal, WhatWaitsForAStuckDiskIsWrittenWhenItGoesOn) {
  m_file->appending.lock();
  JournalWriter writer(m_file, note());
  append(writer, kRecords);
  EXPECT_EQ(writer.written(), 0U);
  m_file->appending.unlock();
  writer.finish();
  writer.append(record(7));
  EXPECT_TRUE(eventually([&] { return writer.synced() == kRecords * kRecord; }));
  expectWhole(m_file->contents);
  EXPECT_TRUE(m_failures.empty());
}

TEST_F(Journal, WhatComesIsOnTheDiskWithoutAnyEndOfTheRecording) {
  static_assert(2 * JournalWriter::kSyncPeriod <= std::chrono::seconds(2), "a power cut's share");
  JournalWriter writer(m_file, note());
  for (std::size_t number = 1; number <= 2; ++number) {
    writer.append(record(number));
    EXPECT_TRUE(eventually([&] { return writer.synced() == number * kRecord; }));
  }
}

TEST_F(Journal, ADiskThatFillsUpAtAnyByteIsToldOnceAndTheRestKept) {
  for (std::size_t room = 0; room < 3 * kRecord; ++room) {
    m_failures.clear();
    m_file = std::make_shared<MemoryAppendFile>();
    m_file->room = room;
    JournalWriter writer(m_file, note());
    append(writer, 5);
    writer.finish();
    ASSERT_TRUE(eventually([&] { return !m_failures.empty(); })) << room;
    writer.append(record(5));
    m_file->room = 1000;
    QCoreApplication::processEvents();
    ASSERT_EQ(m_failures, std::vector<std::string>{"the disk is full"});
    ASSERT_EQ(m_file->contents.size(), room) << "nothing is written behind a gap";
  }
}

TEST_F(Journal, ASyncThatFailsIsToldAndWritingGoesOn) {
  m_file->syncError = "broken";
  JournalWriter writer(m_file, note());
  writer.append(record(0));
  ASSERT_TRUE(eventually([&] { return !m_failures.empty(); }));
  writer.append(record(1));
  EXPECT_TRUE(eventually([&] { return writer.written() == 2 * kRecord; }));
}

TEST_F(Journal, AFullDeviceGivesTheSystemsReasonUnlessItIsOver) {
  auto full = std::make_shared<FileDescriptor>(open("/dev/full", O_WRONLY | O_CLOEXEC));
  ASSERT_TRUE(full->isOpen());
  const auto device = std::make_shared<PosixAppendFile>(full, "/dev/");
  {
    JournalWriter writer(device, note());
    writer.append(record(0));
  }
  QCoreApplication::processEvents();
  EXPECT_TRUE(m_failures.empty()) << "nobody listens any more";
  JournalWriter writer(device, note());
  writer.append(record(0));
  ASSERT_TRUE(eventually([&] { return !m_failures.empty(); }));
  EXPECT_EQ(m_failures.front(), "No space left on device");
}

}  // namespace
}  // namespace qv3
