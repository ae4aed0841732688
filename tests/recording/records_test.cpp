#include "tests/support/records.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <vector>

#include "recording/journal.h"
#include "recording/journalloader.h"
#include "recording/journalsink.h"
#include "recording/recorder.h"
#include "recording/sessionfile.h"
#include "recording/sessionloader.h"
#include "tests/support/memoryfiles.h"

namespace qv3 {
namespace {

using test::hexOf;
using test::someRecords;
using test::textOf;

/// The bytes are a contract with every file ever written.
TEST(SampleRecord, BytesArePinned) {
  SampleRecord record{0x04030201, static_cast<std::int16_t>(0x8005),  -2503, 0x0706, 245,
                      63,         packFlags(Lamp::Lag, true, true, 3)};
  record.setTag(0x0102);
  record.PacketType = 'P';
  EXPECT_EQ(hexOf(encode(record)), "01020304058039F60607F53F6F00020100005450");
  EXPECT_EQ(record.reading(), 0x8005);
}

TEST(SampleRecord, AnyBytesSurviveDecodingAndEncoding) {
  std::mt19937 random{7};
  for (int n = 0; n < 1000; ++n) {
    RecordBytes bytes;
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    EXPECT_EQ(encode(decode(bytes)), bytes);
  }
}

TEST(SampleRecord, FlagsHoldLampFreezeBdAndDial) {
  struct Row {
    Lamp lamp;
    bool frozen, bd;
    int dial, flags;
  };
  for (const Row& row :
       {Row{Lamp::Off, false, false, 0, 0x00}, Row{Lamp::Set, false, false, 1, 0x21},
        Row{Lamp::BodyMotion, true, false, 2, 0x46}, Row{Lamp::Lag, true, true, 7, 0xEF},
        Row{Lamp::Off, false, true, 8, 0x08}}) {
    EXPECT_EQ(packFlags(row.lamp, row.frozen, row.bd, row.dial), row.flags);
  }
}

TEST(SessionFile, TheHeaderLiesOverTheTagsOfTheFirstTwoSamplesOfTheFileAlone) {
  RecordBuffer records;
  SampleRecord tagged;
  tagged.PacketType = 'P';
  tagged.setTag(0xAABB);
  for (int n = 0; n < 3; ++n) records.append(tagged);
  struct Row {
    std::size_t number;
    std::optional<SessionStart> start;
    bool wanted;
    const char* tail;  ///< bytes 14 to 19
  };
  const SessionStart start{86399, 6210};
  for (const Row& row : {Row{1, start, true, "0201517F4350"}, Row{2, start, true, "01AA18424450"},
                         Row{3, start, true, "BBAA00005450"}, Row{1, start, false, "BBAA00005450"},
                         Row{1, std::nullopt, true, "BBAA00005450"}}) {
    const RecordBytes bytes = fileRecord(records, row.number, row.start, {row.wanted, 2, 1});
    EXPECT_EQ(hexOf(bytes).substr(28), row.tail) << row.number;
  }
  EXPECT_EQ(records.at(1), tagged) << "the buffer keeps its samples";
}

struct Recording : testing::Test {
  Recorder recorder;

  void begin(bool withSound) {
    recorder.start(withSound);
    recorder.startData({});
  }
  const SampleRecord& append(std::int32_t sampleCount) {
    Recorder::Sample sample;
    sample.sampleCount = sampleCount;
    recorder.append(sample);
    return recorder.records().at(recorder.records().count());
  }
  std::int32_t second(int samples) {
    for (int n = 1; n < samples; ++n) append(n);
    return append(samples).Time;
  }
};

TEST_F(Recording, FirstSampleOfASecondIsCorrectedByTheOneBefore) {
  struct Row {
    int samples;
    std::int32_t last, first;
  };
  for (const Row& row :
       {Row{49, 960, 990}, Row{50, 980, 1000}, Row{51, 1000, 1010}, Row{60, 1180, 1180}}) {
    begin(true);
    EXPECT_EQ(append(1).Time, 0) << "no second before: 10 ms early would be negative";
    EXPECT_EQ(second(row.samples), row.last);
    ASSERT_TRUE(recorder.takeSoundPosition(2 * kSoundBytesPerSecond));
    EXPECT_EQ(append(1).Time, row.first) << "time never falls, after " << row.samples;
  }
}

TEST_F(Recording, SoundSecondsCountFromTheEndOfTheLeadIn) {
  recorder.start(true);
  EXPECT_FALSE(recorder.takeSoundPosition(44099));
  EXPECT_TRUE(recorder.takeSoundPosition(44100));
  EXPECT_EQ(recorder.elapsedSeconds(), 0);
  EXPECT_FALSE(recorder.takeSoundPosition(50000));
  EXPECT_TRUE(recorder.takeSoundPosition(88200));
  EXPECT_EQ(recorder.elapsedSeconds(), 1);
}

TEST_F(Recording, ATagWaitsForTheNextSampleAndIsDroppedByRecord) {
  begin(false);
  recorder.markTag();
  EXPECT_EQ(append(1).Mark, 'T');
  EXPECT_EQ(append(2).Mark, 0);
  recorder.markTag();
  begin(false);
  EXPECT_EQ(append(1).Mark, 0);
}

TEST_F(Recording, WithoutSoundTimeIsTheSampleCountAndGrowingMovesNothing) {
  begin(false);
  second(7000);
  const SampleRecord* first = &recorder.records().at(1);
  for (int n = 7001; n <= 20000; ++n) append(n);
  EXPECT_EQ(append(20005).Time, 400100) << "frames that were not kept count too";
  EXPECT_EQ(first, &recorder.records().at(1));
  for (std::size_t n = 1; n <= 20000; ++n) {
    ASSERT_EQ(recorder.records().at(n).Time, static_cast<std::int32_t>(n) * 20);
  }
}

TEST(SessionSearch, FirstRecordAtOrAfterTheTarget) {
  using Times = std::vector<std::int32_t>;
  const Times uneven = {0, 20, 40, 40, 40, 1000, 1020, 5000};
  struct Row {
    Times times;
    std::int32_t target;
    std::size_t record;
  };
  for (const Row& row :
       {Row{uneven, -5, 1}, Row{uneven, 0, 1}, Row{uneven, 1, 2}, Row{uneven, 40, 3},
        Row{uneven, 41, 6}, Row{uneven, 1000, 6}, Row{uneven, 1001, 7}, Row{uneven, 4999, 8},
        Row{uneven, 5001, 8}, Row{uneven, 2000000000, 8}, Row{{700}, 5, 1}, Row{{7, 7, 7}, 7, 1}}) {
    RecordBuffer records;
    for (const std::int32_t time : row.times) records.append({time});
    EXPECT_EQ(FindqvdRecord(records, row.target), row.record) << row.target;
  }
}

using State = SessionLoader::State;

std::string goodFile(int count) {
  return textOf(fileBytes(someRecords(count), SessionStart{3661, 42}, {}));
}

/// Nothing where the file is refused.
std::optional<RecordBuffer> load(const std::string& bytes,
                                 std::optional<std::uint64_t> promised = std::nullopt) {
  constexpr std::size_t kPiece = 33;  // records come in two parts
  SessionLoader loader(std::make_unique<test::MemoryReadAhead>(bytes, kPiece),
                       promised.value_or(bytes.size()));
  while (loader.step(7) == State::Loading) {
  }
  if (loader.state() == State::Incompatible) return std::nullopt;
  EXPECT_EQ(loader.progress() == 1, !promised);
  return loader.takeRecords();
}

TEST(SessionLoad, WritingAndReadingGivesTheSameRecordsAndStart) {
  const std::string bytes = goodFile(20);
  const auto records = load(bytes);
  ASSERT_TRUE(records);
  EXPECT_EQ(headerStart(*records), (SessionStart{3661, 42}));
  EXPECT_EQ(textOf(fileBytes(*records, std::nullopt, {})), bytes) << "a loaded header stays";
}

TEST(SessionLoad, EveryTruncationGivesItsWholeRecordsOrIsRefused) {
  const std::string bytes = goodFile(9);
  for (std::size_t size = 0; size <= bytes.size(); ++size) {
    const auto records = load(bytes.substr(0, size));
    EXPECT_EQ(records ? records->count() : 0, size < 100 ? 0 : size / kRecordSize) << size;
  }
  const auto shrunk = load(bytes, std::uint64_t{1} << 60);
  EXPECT_EQ(shrunk ? shrunk->count() : 0, 9U) << "ends before the size that was promised";
  EXPECT_FALSE(load("", 200)) << "could not be read";
}

TEST(SessionLoad, AnyPacketLetterOfTheFirstFiveDecides) {
  for (std::size_t record = 0; record < 6; ++record) {
    std::string bytes = goodFile(8);
    bytes[record * kRecordSize + 19] = 'x';
    EXPECT_EQ(load(bytes).has_value(), record == kVerifiedRecords) << record;
  }
}

TEST(SessionLoad, MutatedFilesAreReadOrRefused) {
  const std::string good = goodFile(30);
  std::mt19937 random{11};
  for (int n = 0; n < 10000; ++n) {
    std::string bytes = good.substr(0, random() % (good.size() + 1));
    for (int flips = 0; flips < 3 && !bytes.empty(); ++flips) {
      bytes[random() % bytes.size()] ^= static_cast<char>(1U << random() % 8);
    }
    const auto records = load(bytes);
    if (!records) continue;
    headerStart(*records);
    const std::size_t found = FindqvdRecord(*records, static_cast<std::int32_t>(random()));
    ASSERT_GE(found, 1U);
    ASSERT_LE(found, records->count());
  }
}

using Reading = JournalReader::State;
using Bytes = std::vector<std::uint8_t>;

const JournalHeader kHeader{SessionStart{86399, 6210}, true, 2, "/s/", "Take_001", "1.wav"};

/// Keeps what a feed hands over, as a file would.
struct MemorySink : JournalSink {
  Bytes bytes;
  void append(Bytes more) override { bytes.insert(bytes.end(), more.begin(), more.end()); }
  void finish() override {}
  void remove() override {}
  void moveToTrash() override {}
};

/// A journal as it is made: the header, then records in ones and twos.
Bytes someJournal(const JournalHeader& header, int count) {
  MemorySink sink;
  JournalFeed feed(sink);
  feed.begin(header);
  for (int soFar = 0; soFar < count; soFar += 1 + soFar % 2) feed.update(someRecords(soFar));
  for (int twice = 0; twice < 2; ++twice) feed.update(someRecords(count));
  return sink.bytes;
}

void expectFirstRecords(const RecordBuffer& records, std::size_t count) {
  const RecordBuffer all = someRecords(static_cast<int>(count));
  ASSERT_EQ(records.count(), count);
  for (std::size_t number = 1; number <= count; ++number) {
    ASSERT_EQ(records.at(number), all.at(number)) << number;
  }
}

JournalReader read(std::span<const std::uint8_t> bytes) {
  JournalReader reader;
  reader.take(bytes);
  return reader;
}

/// The one example that the page on the format shows, what its bytes mean left out.
std::string documentedExample() {
  std::ifstream page(std::string(std::getenv("QV3_TEST_DATA")) + "/../../docs/journal-format.md");
  std::string bytes, line;
  while (std::getline(page, line) && line != "```") {
  }
  while (std::getline(page, line) && line != "```") bytes += line.substr(0, line.find("   "));
  std::erase(bytes, ' ');
  return bytes;
}

TEST(Journal, BytesAreThoseOfThePageOnTheFormat) {
  EXPECT_EQ(hexOf(someJournal(kHeader, 2)), documentedExample());
}

TEST(Journal, EveryPrefixGivesItsWholeRecords) {
  for (const JournalHeader& header : {kHeader, JournalHeader{}}) {
    const Bytes journal = someJournal(header, 7);
    const std::size_t begin = encodeJournalHeader(header).size();
    ASSERT_EQ(journal.size(), begin + 7 * kRecordSize);
    for (std::size_t size = 0; size <= journal.size(); ++size) {
      const JournalReader reader = read(std::span(journal).first(size));
      ASSERT_EQ(reader.state(), size < begin ? Reading::Header : Reading::Records) << size;
      if (size < begin) continue;
      ASSERT_EQ(reader.header(), header);
      ASSERT_EQ(reader.headerSize(), begin);
      expectFirstRecords(reader.records(), (size - begin) / kRecordSize);
    }
  }
}

TEST(Journal, ADamagedHeaderIsNotTakenForAnother) {
  const Bytes good = someJournal(kHeader, 2);
  const std::size_t begin = encodeJournalHeader(kHeader).size();
  for (std::size_t at = 0; at < begin; ++at) {
    for (int bit = 0; bit < 8; ++bit) {
      Bytes bad = good;
      bad[at] ^= static_cast<std::uint8_t>(1U << bit);
      ASSERT_EQ(read(bad).state(), Reading::Unreadable) << at;
    }
  }
  EXPECT_EQ(read(Bytes(4096)).state(), Reading::Unreadable);
}

TEST(Journal, EndsWhereTheDiskHadNotWritten) {
  Bytes journal = someJournal(kHeader, 6);
  std::fill(journal.end() - 3 * kRecordSize - 5, journal.end() - kRecordSize, std::uint8_t{0});
  const JournalReader reader = read(journal);
  EXPECT_EQ(reader.state(), Reading::Ended);
  EXPECT_EQ(reader.records().count(), 2U) << "record 3 lost its letter";
}

TEST(Journal, LoadsInSlicesOfAnySizeAsATakeJustRecorded) {
  const Bytes journal = someJournal(kHeader, 40);
  const TakeSound sound{TakeSound::Kind::Spool, "/r/1.wav", 8, 100};
  for (std::size_t slice = 1; slice < 100; slice += 7) {
    JournalLoader loader(
        std::make_unique<std::istringstream>(std::string(journal.begin(), journal.end())),
        journal.size(), sound);
    while (loader.step(slice) == JournalLoader::State::Loading) {
    }
    ASSERT_EQ(loader.step(slice), JournalLoader::State::Done);
    EXPECT_EQ(loader.progress(), 1);
    const Take take = loader.takeRecovered();
    expectFirstRecords(take.records, 40);
    EXPECT_EQ(take.recordMode, kManualMode);
    EXPECT_TRUE(take.unsaved && take.loaded && take.withSound);
    EXPECT_EQ(take.sound, sound);
    EXPECT_EQ(journalHeader(take, "1.wav").start, kHeader.start);
    EXPECT_EQ(take.folder + take.name, "/s/Take_001");
  }
  JournalLoader none(std::make_unique<std::istringstream>("QV3J"), 4, {});
  while (none.step(64) == JournalLoader::State::Loading) {
  }
  EXPECT_EQ(none.step(64), JournalLoader::State::Unreadable);
}

TEST(Journal, NoBytesAtAllTakeTheReaderAlong) {
  const Bytes good = someJournal(kHeader, 9);
  std::mt19937 random{7};
  for (int n = 0; n < 5000; ++n) {
    Bytes bytes(good.begin(), good.begin() + static_cast<long>(random() % (good.size() + 1)));
    for (int flips = 0; flips < 3 && !bytes.empty(); ++flips) {
      bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1U << random() % 8);
    }
    ASSERT_LE(read(bytes).records().count(), 9U);
  }
}

TEST(Journal, LongTextsAreCut) {
  JournalHeader header = kHeader;
  header.folder.assign(70000, 'f');
  header.name.assign(70000, 'n');
  const JournalReader reader = read(encodeJournalHeader(header));
  EXPECT_EQ(reader.state(), Reading::Records);
  EXPECT_EQ(reader.header().folder, std::string(kLongestJournalText, 'f'));
}

}  // namespace
}  // namespace qv3
