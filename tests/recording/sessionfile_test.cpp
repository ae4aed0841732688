#include "recording/sessionfile.h"

#include <gtest/gtest.h>

#include <random>

#include "recording/sessionloader.h"
#include "tests/support/memoryfiles.h"

namespace qv3 {
namespace {

RecordBuffer recordsAt(const std::vector<std::int32_t>& times) {
  RecordBuffer records;
  for (const std::int32_t time : times) {
    SampleRecord record;
    record.Time = time;
    record.PacketType = 'P';
    records.append(record);
  }
  return records;
}

std::string textOf(const std::vector<std::uint8_t>& bytes) {
  return {bytes.begin(), bytes.end()};
}

std::string goodFile(int count) {
  std::vector<std::int32_t> times;
  for (int n = 1; n <= count; ++n) times.push_back(n * 20);
  return textOf(fileBytes(recordsAt(times), SessionStart{3661, 42}, {}));
}

SessionLoader loaderFor(const std::string& bytes) {
  constexpr std::size_t kPiece = 33;  // records come in two parts
  return {std::make_unique<test::MemoryReadAhead>(bytes, kPiece), bytes.size()};
}

SessionLoader::State loadAll(SessionLoader& loader) {
  while (loader.step(7) == SessionLoader::State::Loading) {
  }
  return loader.state();
}

TEST(SessionSearch, FirstRecordAtOrAfterTheTarget) {
  const std::vector<std::int32_t> uneven = {0, 20, 40, 40, 40, 1000, 1020, 5000};
  struct Row {
    std::int32_t target;
    std::size_t record;
  };
  for (const Row& row : {Row{-5, 1}, Row{0, 1}, Row{1, 2}, Row{40, 3}, Row{41, 6}, Row{1000, 6},
                         Row{1001, 7}, Row{4999, 8}, Row{5001, 8}, Row{2000000000, 8}}) {
    EXPECT_EQ(FindqvdRecord(recordsAt(uneven), row.target), row.record) << row.target;
  }
  EXPECT_EQ(FindqvdRecord(recordsAt({700}), 5), 1U);
  EXPECT_EQ(FindqvdRecord(recordsAt({7, 7, 7}), 7), 1U) << "equal times: the first of them";
}

TEST(SessionLoad, WritingAndReadingGivesTheSameRecordsAndStart) {
  const std::string bytes = goodFile(20);
  SessionLoader loader = loaderFor(bytes);
  EXPECT_EQ(loadAll(loader), SessionLoader::State::Done);
  EXPECT_EQ(loader.progress(), 1);
  const RecordBuffer records = loader.takeRecords();
  const auto start = headerStart(records);
  ASSERT_TRUE(start);
  EXPECT_EQ(start->secondsOfDay, 3661);
  EXPECT_EQ(start->day, 42);
  EXPECT_EQ(textOf(fileBytes(records, std::nullopt, {})), bytes) << "a loaded header stays";
}

TEST(SessionLoad, EveryTruncationGivesItsWholeRecordsOrIsRefused) {
  const std::string bytes = goodFile(9);
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    SessionLoader loader = loaderFor(bytes.substr(0, size));
    if (size < kVerifiedRecords * kRecordSize) {
      EXPECT_EQ(loadAll(loader), SessionLoader::State::Incompatible) << size;
    } else {
      EXPECT_EQ(loadAll(loader), SessionLoader::State::Done) << size;
      EXPECT_EQ(loader.takeRecords().count(), size / kRecordSize) << size;
    }
  }
}

TEST(SessionLoad, AFileThatEndsBeforeItsPromisedSizeLoadsWhatIsThere) {
  const std::string bytes = goodFile(12);
  SessionLoader loader(std::make_unique<test::MemoryReadAhead>(bytes), std::uint64_t{1} << 60);
  EXPECT_EQ(loadAll(loader), SessionLoader::State::Done);
  EXPECT_EQ(loader.takeRecords().count(), 12U);
}

TEST(SessionLoad, AnyPacketLetterOfTheFirstFiveDecides) {
  for (std::size_t record = 0; record < 6; ++record) {
    std::string bytes = goodFile(8);
    bytes[record * kRecordSize + 19] = 'x';
    SessionLoader loader = loaderFor(bytes);
    EXPECT_EQ(loadAll(loader) == SessionLoader::State::Incompatible, record < kVerifiedRecords);
  }
  SessionLoader unreadable(std::make_unique<test::MemoryReadAhead>(""), 200);
  EXPECT_EQ(loadAll(unreadable), SessionLoader::State::Incompatible);
}

TEST(SessionLoad, MutatedFilesAreReadOrRefused) {
  const std::string good = goodFile(30);
  std::mt19937 random{11};
  for (int n = 0; n < 10000; ++n) {
    std::string bytes = good.substr(0, random() % (good.size() + 1));
    for (int flips = 0; flips < 3 && !bytes.empty(); ++flips) {
      bytes[random() % bytes.size()] ^= static_cast<char>(1U << random() % 8);
    }
    SessionLoader loader = loaderFor(bytes);
    if (loadAll(loader) != SessionLoader::State::Done) continue;
    const RecordBuffer records = loader.takeRecords();
    headerStart(records);
    const std::size_t found = FindqvdRecord(records, static_cast<std::int32_t>(random()));
    ASSERT_GE(found, 1U);
    ASSERT_LE(found, records.count());
  }
}

}  // namespace
}  // namespace qv3
