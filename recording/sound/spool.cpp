#include "recording/sound/spool.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "recording/littleendian.h"
#include "recording/sound/pcmreader.h"
#include "recording/sound/wavlayout.h"

namespace qv3 {
namespace {

constexpr std::size_t kPiece = 65536;
constexpr std::size_t kChunkHeader = 8;
constexpr std::uint64_t kRiffSize = 4;  ///< where the size of the whole stands
constexpr std::size_t kFormatEnd = kPcmHeaderSize - kChunkHeader;

}  // namespace

Spool::Spool(std::string path, std::shared_ptr<ByteFile> file, const WaveFormat& format)
    : m_path(std::move(path)), m_file(std::move(file)), m_format(format) {
  writeHeader();
}

void Spool::restart(const WaveFormat& format) {
  const std::lock_guard lock(m_mutex);
  m_format = format;
  m_begin = 0;
  m_end = 0;
  writeHeader();
  if (m_failure.empty() && !m_file->truncate(kDataStart)) m_failure = m_file->error();
}

WaveFormat Spool::format() const {
  const std::lock_guard lock(m_mutex);
  return m_format;
}

void Spool::write(std::uint64_t place, std::span<const std::uint8_t> bytes) {
  const std::lock_guard lock(m_mutex);
  // Sound that comes late for what was cut off the front must not touch the header that lies there.
  const std::uint64_t cut =
      std::min<std::uint64_t>(m_begin - std::min(m_begin, place), bytes.size());
  bytes = bytes.subspan(cut);
  place += cut;
  if (bytes.empty()) return;
  if (place > m_end) fillSilence(place);
  put(offsetOf(place), bytes);
  m_end = std::max(m_end, place + bytes.size());
  if (m_end - m_sizesWritten >= m_format.samplesPerSecond * m_format.blockSize()) writeSizes();
}

void Spool::extendTo(std::uint64_t place) {
  const std::lock_guard lock(m_mutex);
  if (place > m_end) fillSilence(place);
  writeSizes();
}

bool Spool::cutsInPlace(std::uint64_t from, std::uint64_t to) const {
  const std::lock_guard lock(m_mutex);
  return isFront(from, to);
}

/// The chunk before the sound grows over what goes; chunks have even sizes.
bool Spool::isFront(std::uint64_t from, std::uint64_t to) const {
  return from == m_begin && to - from >= kChunkHeader && (to - from) % 2 == 0;
}

void Spool::remove(std::uint64_t from, std::uint64_t to) {
  const std::lock_guard lock(m_mutex);
  if (isFront(from, to)) {
    cutFront(to);
  } else if (to > from) {
    closeGap(from, to);
  }
}

std::uint64_t Spool::begin() const {
  const std::lock_guard lock(m_mutex);
  return m_begin;
}

std::uint64_t Spool::end() const {
  const std::lock_guard lock(m_mutex);
  return m_end;
}

SpoolPlace Spool::where() const {
  const std::lock_guard lock(m_mutex);
  return {m_path, offsetOf(m_begin), m_end - m_begin};
}

std::string Spool::failure() const {
  const std::lock_guard lock(m_mutex);
  return m_failure;
}

void Spool::put(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  if (!m_failure.empty()) return;
  if (!m_file->writeAt(offset, bytes)) m_failure = m_file->error();
}

void Spool::put32(std::uint64_t offset, std::uint64_t value) {
  std::vector<std::uint8_t> bytes;
  putLittle(bytes, to32(value));
  put(offset, bytes);
}

void Spool::fillSilence(std::uint64_t to) {
  const std::vector<std::uint8_t> silence(kPiece, silentByte(m_format));
  while (m_end < to) {
    const std::size_t count = std::min<std::uint64_t>(kPiece, to - m_end);
    put(offsetOf(m_end), std::span(silence).first(count));
    m_end += count;
  }
}

void Spool::writeHeader() {
  std::vector<std::uint8_t> header = pcmHeader(m_format, 0);
  const std::vector<std::uint8_t> data(header.begin() + kFormatEnd, header.end());
  header.resize(kFormatEnd);
  putWord(header, kSpoolChunk);
  putLittle(header, std::uint32_t{0});
  header.insert(header.end(), data.begin(), data.end());
  put(0, header);
  writeSizes();
}

void Spool::writeSizes() {
  m_sizesWritten = m_end;
  put32(kRiffSize, offsetOf(m_end) - kChunkHeader);
  put32(offsetOf(m_begin) - 4, m_end - m_begin);
}

/// The new header of the sound lies in what is cut, the size of the chunk before it is the last to
/// be written: the file reads well before and after every write.
void Spool::cutFront(std::uint64_t to) {
  std::vector<std::uint8_t> header;
  putWord(header, "data");
  putLittle(header, to32(m_end - to));
  put(offsetOf(to) - kChunkHeader, header);
  put32(kMarkSize, to);
  m_begin = to;
}

void Spool::closeGap(std::uint64_t from, std::uint64_t to) {
  std::vector<std::uint8_t> piece(kPiece);
  for (std::uint64_t at = to; at < m_end; at += kPiece) {
    const std::size_t count = std::min<std::uint64_t>(kPiece, m_end - at);
    const std::span<std::uint8_t> bytes = std::span(piece).first(count);
    const std::size_t got = m_file->readAt(offsetOf(at), bytes);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(got), bytes.end(), silentByte(m_format));
    put(offsetOf(from + at - to), bytes);
  }
  m_end -= to - from;
  if (m_failure.empty() && !m_file->truncate(offsetOf(m_end))) m_failure = m_file->error();
  writeSizes();
}

}  // namespace qv3
