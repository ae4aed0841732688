#include "recording/samplerecord.h"

namespace qv3 {
namespace {

constexpr std::uint8_t byteOf(std::uint32_t value, int index) {
  return static_cast<std::uint8_t>(value >> (8 * index));
}

void put16(std::uint8_t* to, std::int16_t value) {
  const auto bits = static_cast<std::uint16_t>(value);
  to[0] = byteOf(bits, 0);
  to[1] = byteOf(bits, 1);
}

std::int16_t get16(const std::uint8_t* from) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(from[0] | from[1] << 8));
}

}  // namespace

void SampleRecord::setTag(std::uint16_t number) {
  byte14 = byteOf(number, 0);
  byte15 = byteOf(number, 1);
  Mark = 'T';
}

std::uint8_t packFlags(Lamp lamp, bool frozen, bool bdRunning, std::int32_t dialType) {
  return static_cast<std::uint8_t>(static_cast<unsigned>(lamp) | (frozen ? 4U : 0U) |
                                   (bdRunning ? 8U : 0U) | (dialType & 7U) << 5);
}

RecordBytes encode(const SampleRecord& record) {
  RecordBytes bytes{};
  const auto time = static_cast<std::uint32_t>(record.Time);
  for (int index = 0; index < 4; ++index) {
    bytes[static_cast<std::size_t>(index)] = byteOf(time, index);
  }
  put16(&bytes[4], record.Needle);
  put16(&bytes[6], record.NeedleShown);
  put16(&bytes[8], record.BdTenths);
  bytes[10] = record.BasePosition;
  bytes[11] = record.KnobPosition;
  bytes[12] = record.Flags;
  bytes[13] = record.reserved13;
  bytes[14] = record.byte14;
  bytes[15] = record.byte15;
  bytes[16] = record.byte16;
  bytes[17] = record.byte17;
  bytes[18] = static_cast<std::uint8_t>(record.Mark);
  bytes[19] = static_cast<std::uint8_t>(record.PacketType);
  return bytes;
}

SampleRecord decode(std::span<const std::uint8_t, kRecordSize> bytes) {
  SampleRecord record;
  record.Time = static_cast<std::int32_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16 |
                                          static_cast<std::uint32_t>(bytes[3]) << 24);
  record.Needle = get16(&bytes[4]);
  record.NeedleShown = get16(&bytes[6]);
  record.BdTenths = get16(&bytes[8]);
  record.BasePosition = bytes[10];
  record.KnobPosition = bytes[11];
  record.Flags = bytes[12];
  record.reserved13 = bytes[13];
  record.byte14 = bytes[14];
  record.byte15 = bytes[15];
  record.byte16 = bytes[16];
  record.byte17 = bytes[17];
  record.Mark = static_cast<char>(bytes[18]);
  record.PacketType = static_cast<char>(bytes[19]);
  return record;
}

void layHeader(SampleRecord& first, SampleRecord& second, const SessionStart& start,
               std::int32_t clockType, std::int32_t dateType) {
  const auto seconds = static_cast<std::uint32_t>(start.secondsOfDay);
  first.byte14 = static_cast<std::uint8_t>(clockType);
  first.byte15 = byteOf(seconds, 2);
  first.byte16 = byteOf(seconds, 1);
  first.byte17 = byteOf(seconds, 0);
  first.Mark = 'C';
  second.byte14 = static_cast<std::uint8_t>(dateType);
  second.byte16 = byteOf(start.day, 1);
  second.byte17 = byteOf(start.day, 0);
  second.Mark = 'D';
}

}  // namespace qv3
