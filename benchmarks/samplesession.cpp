#include "benchmarks/samplesession.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <system_error>
#include <vector>

#include "recording/recorder.h"
#include "recording/sessionfile.h"
#include "recording/wavheader.h"

namespace qv3::bench {
namespace {

constexpr std::int32_t kLowest = 20000;
constexpr std::size_t kReadings = 12000;
constexpr double kNeedleSwing = 3000;
constexpr double kNeedlePeriod = 700;  // records
constexpr SessionStart kStart{43200, 6210};

bool writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return file.good();
}

}  // namespace

std::int32_t sampleReading(std::size_t number) {
  return kLowest + static_cast<std::int32_t>(number % kReadings);
}

RecordBuffer sampleRecords(std::size_t count) {
  RecordBuffer records;
  for (std::size_t number = 1; number <= count; ++number) {
    const double turn = 2 * std::numbers::pi * static_cast<double>(number) / kNeedlePeriod;
    SampleRecord record;
    record.Time = static_cast<std::int32_t>(number * 1000 / kSamplesPerSecond);
    record.Needle = static_cast<std::int16_t>(static_cast<std::uint16_t>(sampleReading(number)));
    record.NeedleShown = static_cast<std::int16_t>(kNeedleSwing * std::sin(turn));
    record.BdTenths = static_cast<std::int16_t>(number / 3000 % 300);
    record.BasePosition = 40;
    record.KnobPosition = 24;
    record.Flags = packFlags(Lamp::Off, false, true, 1);
    record.PacketType = 'P';
    records.append(record);
  }
  return records;
}

bool writeSampleSession(const std::string& base, std::size_t seconds) {
  const RecordBuffer records = sampleRecords(seconds * kSamplesPerSecond);
  const std::uint64_t sound = seconds * kSoundBytesPerSecond;
  if (!writeFile(base + ".qvd", fileBytes(records, kStart, {}))) return false;
  if (!writeFile(base + ".wav", pcmHeader(recordedFormat(), sound))) return false;
  std::error_code error;
  std::filesystem::resize_file(base + ".wav", kPcmHeaderSize + sound, error);
  return !error;
}

}  // namespace qv3::bench
