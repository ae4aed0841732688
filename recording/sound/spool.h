#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "recording/sound/bytefile.h"
#include "recording/sounddevice.h"

namespace qv3 {

/// Recorded sound on its way to the disk: a ".wav" file that is valid at every moment. It begins
/// with the chunk `kSpoolChunk`; its sizes are rewritten once a second of sound, and readers go by
/// its length. Sound has its place by the number of the byte since the recording began, which no
/// cut changes. After the first write that failed nothing more is written. May be called from any
/// thread.
class Spool {
 public:
  static constexpr std::uint64_t kDataStart = 12 + 8 + 16 + 8 + 8;

  Spool(std::string path, std::shared_ptr<ByteFile> file, const WaveFormat& format);

  /// Begins anew, with nothing recorded.
  void restart(const WaveFormat& format);
  WaveFormat format() const;

  /// Bytes at their place; silence fills what is missing before them.
  void write(std::uint64_t place, std::span<const std::uint8_t> bytes);
  /// The recording reaches this far: what has not arrived is silence, unless it arrives yet.
  void extendTo(std::uint64_t place);

  /// Takes out the bytes from place `from` up to `to`.
  void remove(std::uint64_t from, std::uint64_t to);
  /// Whether what stays then keeps its place.
  bool cutsInPlace(std::uint64_t from, std::uint64_t to) const;

  std::uint64_t begin() const;  ///< place of the first byte
  std::uint64_t end() const;    ///< place behind the last
  SpoolPlace where() const;
  std::string failure() const;
  std::shared_ptr<ByteFile> file() const { return m_file; }

 private:
  static constexpr std::uint64_t kMarkSize = 36 + 4;  ///< where the chunk's size stands

  std::uint64_t offsetOf(std::uint64_t place) const { return kDataStart + place; }
  void put(std::uint64_t offset, std::span<const std::uint8_t> bytes);
  void put32(std::uint64_t offset, std::uint64_t value);
  void fillSilence(std::uint64_t to);
  void writeHeader();
  void writeSizes();
  bool isFront(std::uint64_t from, std::uint64_t to) const;
  void cutFront(std::uint64_t to);
  void closeGap(std::uint64_t from, std::uint64_t to);

  const std::string m_path;
  const std::shared_ptr<ByteFile> m_file;
  WaveFormat m_format;

  mutable std::mutex m_mutex;
  std::uint64_t m_begin = 0;
  std::uint64_t m_end = 0;
  std::uint64_t m_sizesWritten = 0;  ///< `m_end` as the header tells it
  std::string m_failure;
};

}  // namespace qv3
