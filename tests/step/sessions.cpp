#include "tests/step/sessions.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <span>

#include "recording/recorder.h"
#include "recording/sessionfile.h"
#include "recording/wavheader.h"
#include "tests/step/claps.h"

namespace qv3::test {
namespace {

constexpr double kPeriod = 20;    // ms, between two frames of the meter
constexpr double kPhase = 7;      // ms from the begin of the data to its first frame
constexpr double kLeadIn = 1000;  // ms
constexpr int kBefore = 500;      // ms of data before the first clap
constexpr int kAfter = 1000;      // and after the last
constexpr std::int32_t kFirstReading = 20000;
constexpr std::int32_t kReadingStep = 20;
constexpr double kRate = 22050;

void writeFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Goes over to the other side when its time has come.
class Switching {
 public:
  explicit Switching(int claps) : m_left(claps) {}

  /// True if it does so by `ms` of the data.
  bool takes(double ms) {
    if (m_left == 0 || ms < m_next) return false;
    --m_left;
    m_next += m_gaps.next();
    return true;
  }
  bool over(double ms) const { return m_left == 0 && ms >= m_next + kAfter; }

 private:
  int m_left;
  ClapGaps m_gaps;
  double m_next = kBefore;
};

std::vector<std::uint8_t> soundOf(const std::vector<std::int32_t>& claps, std::int32_t length) {
  const ClapShape shape(kRate);
  std::vector<std::int16_t> samples(static_cast<std::size_t>(length * kRate / 1000));
  for (const std::int32_t time : claps) {
    const auto begin = static_cast<std::size_t>(time * kRate / 1000);
    for (std::int64_t i = 0; i < shape.length(); ++i) {
      samples.at(begin + static_cast<std::size_t>(i)) = shape.at(i);
    }
  }
  std::vector<std::uint8_t> bytes = pcmHeader(recordedFormat(), samples.size() * 2);
  const auto* data = reinterpret_cast<const std::uint8_t*>(samples.data());
  bytes.insert(bytes.end(), data, data + samples.size() * 2);
  return bytes;
}

}  // namespace

std::vector<std::int32_t> makeSession(const std::string& base, int claps, int meterPpm) {
  Recorder recorder;
  recorder.start(true);
  recorder.startData({43200, 6210});
  Recorder::Sample sample;
  sample.flags = packFlags(Lamp::Off, false, false, 1);
  sample.needleShown = -4000;
  Switching switching(claps);
  std::vector<std::int32_t> times;
  for (double ms = kPhase; !switching.over(ms); ms += kPeriod / (1 + meterPpm * 1e-6)) {
    const auto position = static_cast<std::int64_t>((kLeadIn + ms) * kSoundBytesPerSecond / 1000);
    sample.sampleCount = recorder.takeSoundPosition(position) ? 1 : sample.sampleCount + 1;
    const bool clap = switching.takes(ms);
    if (clap) sample.needleShown = sample.needleShown < 0 ? 4000 : -4000;
    recorder.append(sample);
    if (clap) times.push_back(recorder.records().at(recorder.records().count()).Time);
  }
  const RecordBuffer& records = recorder.records();
  const std::int32_t length = records.at(records.count()).Time + kAfter;
  writeFile(base + ".qvd", fileBytes(records, recorder.sessionStart(), {}));
  writeFile(base + ".wav", soundOf(times, length));
  return times;
}

void writeReadings(const std::string& path, int claps) {
  std::ofstream file(path);
  std::int32_t reading = kFirstReading;
  Switching switching(claps);
  for (double ms = 0; !switching.over(ms); ms += kPeriod) {
    if (switching.takes(ms)) reading += kReadingStep;
    file << reading << '\n';
  }
}

std::vector<Change> recordedChanges(const std::string& path) {
  std::vector<Change> changes;
  const std::string bytes = readFile(path);
  std::int32_t last = -1;
  for (std::size_t at = 0; at + kRecordSize <= bytes.size(); at += kRecordSize) {
    RecordBytes record;
    std::memcpy(record.data(), bytes.data() + at, kRecordSize);
    const SampleRecord sample = decode(record);
    if (last >= 0 && sample.reading() != last) {
      changes.push_back({sample.reading(), static_cast<double>(sample.Time)});
    }
    last = sample.reading();
  }
  return changes;
}

std::vector<double> recordedClaps(const std::string& path) {
  std::vector<double> claps;
  const std::string bytes = readFile(path);
  ClapFinder finder(kRate);
  for (std::size_t at = kPcmHeaderSize; at + 2 <= bytes.size(); at += 2) {
    std::int16_t sample = 0;
    std::memcpy(&sample, bytes.data() + at, sizeof sample);
    const auto frame = static_cast<double>((at - kPcmHeaderSize) / 2);
    if (finder.beginsAt(sample)) claps.push_back(frame * 1000 / kRate);
  }
  return claps;
}

}  // namespace qv3::test
