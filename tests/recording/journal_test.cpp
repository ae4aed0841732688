#include "recording/journal.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "recording/journalloader.h"
#include "recording/journalsink.h"

namespace qv3 {
namespace {

using State = JournalReader::State;
using Bytes = std::vector<std::uint8_t>;

const JournalHeader kHeader{SessionStart{86399, 6210}, true, 2, "/s/", "Take_001", "1.wav"};

std::string hexOf(const Bytes& bytes) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : bytes) text += {kDigits[byte >> 4], kDigits[byte & 15]};
  return text;
}

RecordBuffer someRecords(int count) {
  RecordBuffer records;
  for (int n = 0; n < count; ++n) {
    SampleRecord record;
    record.Time = n * 20;
    record.Needle = static_cast<std::int16_t>(n * 1009);
    record.PacketType = "OPT"[n % 3];
    records.append(record);
  }
  return records;
}

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
  const RecordBuffer all = someRecords(count);
  RecordBuffer soFar;
  for (std::size_t number = 1; number <= all.count(); ++number) {
    soFar.append(all.at(number));
    if (number % 3 != 1 || number == all.count()) feed.update(soFar);
  }
  feed.update(soFar);
  return sink.bytes;
}

void expectFirstRecords(const RecordBuffer& records, std::size_t count) {
  const RecordBuffer all = someRecords(static_cast<int>(count));
  ASSERT_EQ(records.count(), count);
  for (std::size_t number = 1; number <= count; ++number) {
    ASSERT_EQ(records.at(number), all.at(number)) << number;
  }
}

/// The bytes of the one example that the page on the format shows, what they mean left out.
Bytes documentedExample() {
  std::ifstream page(std::string(std::getenv("QV3_TEST_DATA")) + "/../../docs/journal-format.md");
  Bytes bytes;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line == "```") {
      inside = !inside;
    } else if (inside) {
      std::istringstream digits(line.substr(0, line.find("   ")));
      for (int byte = 0; digits >> std::hex >> byte;) {
        bytes.push_back(static_cast<std::uint8_t>(byte));
      }
    }
  }
  return bytes;
}

TEST(Journal, BytesAreThoseOfThePageOnTheFormat) {
  EXPECT_EQ(hexOf(someJournal(kHeader, 2)), hexOf(documentedExample()));
}

TEST(Journal, EveryPrefixGivesItsWholeRecords) {
  for (const JournalHeader& header : {kHeader, JournalHeader{}}) {
    const Bytes journal = someJournal(header, 7);
    const std::size_t begin = encodeJournalHeader(header).size();
    ASSERT_EQ(journal.size(), begin + 7 * kRecordSize);
    for (std::size_t size = 0; size <= journal.size(); ++size) {
      JournalReader reader;
      reader.take(std::span(journal).first(size));
      ASSERT_EQ(reader.state(), size < begin ? State::Header : State::Records) << size;
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
      JournalReader reader;
      reader.take(bad);
      ASSERT_EQ(reader.state(), State::Unreadable) << at;
    }
  }
  JournalReader zeros;
  zeros.take(Bytes(4096));
  EXPECT_EQ(zeros.state(), State::Unreadable);
}

TEST(Journal, EndsWhereTheDiskHadNotWritten) {
  Bytes journal = someJournal(kHeader, 6);
  std::fill(journal.end() - 3 * kRecordSize - 5, journal.end() - kRecordSize, std::uint8_t{0});
  JournalReader reader;
  reader.take(journal);
  EXPECT_EQ(reader.state(), State::Ended);
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
    JournalReader reader;
    reader.take(bytes);
    ASSERT_LE(reader.records().count(), 9U);
  }
}

TEST(Journal, LongTextsAreCut) {
  JournalHeader header = kHeader;
  header.folder.assign(70000, 'f');
  header.name.assign(70000, 'n');
  JournalReader reader;
  reader.take(encodeJournalHeader(header));
  EXPECT_EQ(reader.state(), State::Records);
  EXPECT_EQ(reader.header().folder, std::string(kLongestJournalText, 'f'));
}

}  // namespace
}  // namespace qv3
