#include "tests/faults/savedpair.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <algorithm>
#include <map>

namespace qv3::test {
namespace {

constexpr int kHeader = 44;
constexpr double kBytesPerSecond = 44100;

QByteArray contents(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  return file.readAll();
}

std::vector<SampleRecord> recordsIn(const QByteArray& bytes) {
  EXPECT_EQ(bytes.size() % static_cast<int>(kRecordSize), 0);
  std::vector<SampleRecord> records;
  for (qsizetype at = 0; at + static_cast<int>(kRecordSize) <= bytes.size(); at += kRecordSize) {
    RecordBytes record;
    std::copy_n(bytes.constData() + at, kRecordSize, record.begin());
    records.push_back(decode(record));
  }
  return records;
}

/// The place of each record's reading among those that were sent.
std::vector<std::size_t> placesOf(const std::vector<SampleRecord>& records,
                                  const std::vector<int>& sent) {
  std::map<int, std::size_t> places;
  for (std::size_t place = 0; place < sent.size(); ++place) places[sent[place]] = place;
  std::vector<std::size_t> found;
  for (const SampleRecord& record : records) {
    const auto place = places.find(record.reading());
    EXPECT_NE(place, places.end()) << "a reading that was never sent: " << record.reading();
    if (place != places.end()) found.push_back(place->second);
  }
  return found;
}

void readSound(const QString& path, SavedPair& pair) {
  const QByteArray bytes = contents(path);
  ASSERT_GE(bytes.size(), kHeader);
  EXPECT_EQ(bytes.left(4) + bytes.mid(8, 8), "RIFFWAVEfmt ");
  EXPECT_EQ(qFromLittleEndian<quint32>(bytes.constData() + 4), bytes.size() - 8);
  EXPECT_EQ(qFromLittleEndian<quint32>(bytes.constData() + 40), bytes.size() - kHeader);
  pair.soundSeconds = static_cast<double>(bytes.size() - kHeader) / kBytesPerSecond;
  qsizetype end = bytes.size();
  while (end > kHeader && bytes[end - 1] == 0) --end;
  pair.heardSeconds = static_cast<double>(end - kHeader) / kBytesPerSecond;
  EXPECT_GE(pair.soundSeconds, pair.dataSeconds() - 0.02);
  EXPECT_LE(pair.soundSeconds, pair.dataSeconds() + 1.1);
}

}  // namespace

double SavedPair::dataSeconds() const {
  return records.empty() ? 0 : records.back().Time / 1000.0;
}

SavedPair readPair(const QString& data, const std::vector<int>& sent) {
  SavedPair pair;
  pair.records = recordsIn(contents(data));
  for (std::size_t n = 1; n < pair.records.size(); ++n) {
    EXPECT_LE(pair.records[n - 1].Time, pair.records[n].Time) << n;
  }
  const auto places = placesOf(pair.records, sent);
  EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
  const QString sound = data.chopped(4) + ".wav";
  if (QFileInfo::exists(sound)) readSound(sound, pair);
  return pair;
}

}  // namespace qv3::test
