#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace qv3 {

/// time 4, reading 2, needle 2, BD 2, base 1, knob 1, flags 1, reserved 1, tag 2, reserved 2, mark
/// 1, packet 1.
constexpr std::size_t kRecordSize = 4 + 2 + 2 + 2 + 1 + 1 + 1 + 1 + 2 + 2 + 1 + 1;
static_assert(kRecordSize == 20);

using RecordBytes = std::array<std::uint8_t, kRecordSize>;

/// What bits 0-1 of `Flags` tell of the alert lamp.
enum class Lamp : std::uint8_t { Off = 0, Set = 1, BodyMotion = 2, Lag = 3 };

/// Whether a record's last byte is a letter that the meter sends; every record of a session has
/// one.
constexpr bool isPacketLetter(char letter) {
  return letter == 'O' || letter == 'P' || letter == 'T';
}

/// One sample of a session, as it stands in the record buffer and in a ".qvd" file. Little-endian;
/// only the header bytes of records 1 and 2 are big-endian.
struct SampleRecord {
  std::int32_t Time = 0;    ///< bytes 0-3: milliseconds from the start of the data, never negative
  std::int16_t Needle = 0;  ///< 4-5: the reading's 16 bits
  std::int16_t NeedleShown = 0;   ///< 6-7: needle position as drawn
  std::int16_t BdTenths = 0;      ///< 8-9
  std::uint8_t BasePosition = 0;  ///< 10
  std::uint8_t KnobPosition = 0;  ///< 11: 0..63
  std::uint8_t Flags = 0;         ///< 12: see the accessors
  std::uint8_t reserved13 = 0;    ///< written as 0, carried as found
  std::uint8_t byte14 = 0;        ///< tag number, low byte; header records: clock or date type
  std::uint8_t byte15 = 0;        ///< tag number, high byte
  std::uint8_t byte16 = 0;        ///< header records only
  std::uint8_t byte17 = 0;        ///< header records only
  char Mark = 0;                  ///< 18: 0, 'T' tag, 'C' and 'D' header records
  char PacketType = 0;            ///< 19: 'O', 'P' or 'T'

  std::int32_t reading() const { return static_cast<std::uint16_t>(Needle); }
  std::uint16_t TagNumber() const { return static_cast<std::uint16_t>(byte14 | byte15 << 8); }
  void setTag(std::uint16_t number);
  Lamp lamp() const { return static_cast<Lamp>(Flags & 3); }
  bool frozen() const { return (Flags & 4) != 0; }
  bool bdRunning() const { return (Flags & 8) != 0; }
  int dialType() const { return Flags >> 5; }

  bool operator==(const SampleRecord&) const = default;
};
static_assert(sizeof(SampleRecord) == kRecordSize, "a day of recording is held in memory");

/// Bits 0-1 lamp, 2 frozen, 3 BD running, 5-7 dial type; bit 4 stays 0.
std::uint8_t packFlags(Lamp lamp, bool frozen, bool bdRunning, std::int32_t dialType);

RecordBytes encode(const SampleRecord& record);
SampleRecord decode(std::span<const std::uint8_t, kRecordSize> bytes);

/// When the data of a session began, and what of it a file keeps.
struct SessionStart {
  std::int32_t secondsOfDay = 0;  ///< 0..86399
  std::uint16_t day = 0;          ///< days since 31 December 1999

  bool operator==(const SessionStart&) const = default;
};

/// Lays the header bytes over records 1 and 2: their tags are lost by design.
void layHeader(SampleRecord& first, SampleRecord& second, const SessionStart& start,
               std::int32_t clockType, std::int32_t dateType);

}  // namespace qv3
