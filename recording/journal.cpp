#include "recording/journal.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "recording/littleendian.h"

namespace qv3 {
namespace {

// A CR LF and an end-of-file character, so that a transfer as text shows.
constexpr std::array<std::uint8_t, 8> kMagic = {'Q', 'V', '3', 'J', 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::uint16_t kVersion = 1;
constexpr std::size_t kSumSize = 4;

// magic, version, size of the body, checksum of what stands before it.
constexpr std::size_t kVersionAt = kMagic.size();
constexpr std::size_t kBodySizeAt = kVersionAt + 2;
constexpr std::size_t kPrologueSumAt = kBodySizeAt + 2;
constexpr std::size_t kPrologueSize = kPrologueSumAt + kSumSize;
static_assert(kPrologueSize == 16);

// flags, day, seconds of the day, record mode; then three texts.
constexpr std::size_t kDayAt = 1;
constexpr std::size_t kSecondsAt = kDayAt + 2;
constexpr std::size_t kModeAt = kSecondsAt + 4;
constexpr std::size_t kTextsAt = kModeAt + 4;
static_assert(kTextsAt == 11);

constexpr std::uint8_t kStartKnown = 1;
constexpr std::uint8_t kWithSound = 2;

using Bytes = std::span<const std::uint8_t>;

/// CRC-32 as in ISO-HDLC: reflected, polynomial 0xEDB88320.
std::uint32_t checksum(Bytes bytes) {
  std::uint32_t sum = 0xFFFFFFFFU;
  for (const std::uint8_t byte : bytes) {
    sum ^= byte;
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ ((sum & 1) != 0 ? 0xEDB88320U : 0U);
  }
  return ~sum;
}

bool sumStands(Bytes bytes, std::size_t at) {
  return getLittle<std::uint32_t>(bytes, at) == checksum(bytes.first(at));
}

void putText(std::vector<std::uint8_t>& to, std::string_view text) {
  const std::string_view kept = text.substr(0, kLongestJournalText);
  putLittle(to, static_cast<std::uint16_t>(kept.size()));
  to.insert(to.end(), kept.begin(), kept.end());
}

/// Takes a text off the front; nothing if it reaches beyond the end.
std::optional<std::string> takeText(Bytes& from) {
  if (from.size() < 2) return std::nullopt;
  const std::size_t size = getLittle<std::uint16_t>(from, 0);
  if (from.size() < 2 + size) return std::nullopt;
  const Bytes text = from.subspan(2, size);
  from = from.subspan(2 + size);
  return std::string(text.begin(), text.end());
}

std::vector<std::uint8_t> encodeBody(const JournalHeader& header) {
  std::vector<std::uint8_t> body;
  const SessionStart start = header.start.value_or(SessionStart{});
  body.push_back(static_cast<std::uint8_t>((header.start ? kStartKnown : 0U) |
                                           (header.withSound ? kWithSound : 0U)));
  putLittle(body, start.day);
  putLittle(body, static_cast<std::uint32_t>(start.secondsOfDay));
  putLittle(body, static_cast<std::uint32_t>(header.recordMode));
  for (const std::string& text : {header.folder, header.name, header.spool}) putText(body, text);
  return body;
}

std::optional<JournalHeader> decodeBody(Bytes body) {
  if (body.size() < kTextsAt) return std::nullopt;
  JournalHeader header;
  if ((body[0] & kStartKnown) != 0) {
    header.start.emplace();
    header.start->day = getLittle<std::uint16_t>(body, kDayAt);
    header.start->secondsOfDay =
        static_cast<std::int32_t>(getLittle<std::uint32_t>(body, kSecondsAt));
  }
  header.withSound = (body[0] & kWithSound) != 0;
  header.recordMode = static_cast<std::int32_t>(getLittle<std::uint32_t>(body, kModeAt));
  Bytes texts = body.subspan(kTextsAt);
  for (std::string* text : {&header.folder, &header.name, &header.spool}) {
    const auto taken = takeText(texts);
    if (!taken) return std::nullopt;
    *text = *taken;
  }
  return header;
}

}  // namespace

std::vector<std::uint8_t> encodeJournalHeader(const JournalHeader& header) {
  const std::vector<std::uint8_t> body = encodeBody(header);
  std::vector<std::uint8_t> bytes(kMagic.begin(), kMagic.end());
  putLittle(bytes, kVersion);
  putLittle(bytes, static_cast<std::uint16_t>(body.size()));
  putLittle(bytes, checksum(bytes));
  bytes.insert(bytes.end(), body.begin(), body.end());
  putLittle(bytes, checksum(body));
  return bytes;
}

void JournalReader::take(std::span<const std::uint8_t> bytes) {
  if (m_state == State::Records) {
    appendRecords(bytes);
  } else if (m_state == State::Header) {
    m_waiting.insert(m_waiting.end(), bytes.begin(), bytes.end());
    takeHeader();
  }
}

void JournalReader::takeHeader() {
  const Bytes waiting(m_waiting);
  const std::size_t known = std::min(waiting.size(), kMagic.size());
  if (!std::equal(kMagic.begin(), kMagic.begin() + known, waiting.begin())) {
    m_state = State::Unreadable;
    return;
  }
  if (waiting.size() < kPrologueSize) return;
  if (!sumStands(waiting.first(kPrologueSize), kPrologueSumAt) ||
      getLittle<std::uint16_t>(waiting, kVersionAt) != kVersion) {
    m_state = State::Unreadable;
    return;
  }
  const std::size_t bodySize = getLittle<std::uint16_t>(waiting, kBodySizeAt);
  const std::size_t size = kPrologueSize + bodySize + kSumSize;
  if (waiting.size() < size) return;
  const auto header = decodeBody(waiting.subspan(kPrologueSize, bodySize));
  if (!header || !sumStands(waiting.subspan(kPrologueSize, bodySize + kSumSize), bodySize)) {
    m_state = State::Unreadable;
    return;
  }
  m_header = *header;
  m_headerSize = size;
  m_state = State::Records;
  const std::vector<std::uint8_t> rest(waiting.begin() + static_cast<std::ptrdiff_t>(size),
                                       waiting.end());
  m_waiting.clear();
  appendRecords(rest);
}

void JournalReader::appendRecords(std::span<const std::uint8_t> bytes) {
  while (m_state == State::Records && !bytes.empty()) {
    const std::size_t taken = std::min(kRecordSize - m_waiting.size(), bytes.size());
    m_waiting.insert(m_waiting.end(), bytes.begin(),
                     bytes.begin() + static_cast<std::ptrdiff_t>(taken));
    bytes = bytes.subspan(taken);
    if (m_waiting.size() < kRecordSize) return;
    const SampleRecord record = decode(Bytes(m_waiting).first<kRecordSize>());
    m_waiting.clear();
    // After a power cut the last blocks of a file may be there in length but not in contents.
    if (isPacketLetter(record.PacketType)) {
      m_records.append(record);
    } else {
      m_state = State::Ended;
    }
  }
}

}  // namespace qv3
