#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace qv3 {

/// A file that is read and written at places. Writes are not buffered: one that succeeded is in the
/// system's hands, one that did not says so at once. May be called from any thread.
class ByteFile {
 public:
  virtual ~ByteFile() = default;

  virtual std::uint64_t size() = 0;
  /// Fewer bytes than asked for where the file ends or cannot be read.
  virtual std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> to) = 0;
  /// A write behind the end leaves nothing undefined between.
  [[nodiscard]] virtual bool writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) = 0;
  [[nodiscard]] virtual bool truncate(std::uint64_t size) = 0;
  /// Why the last write failed, in words.
  virtual std::string error() = 0;
};

enum class PathKind { Missing, Folder, File, Other };

/// The files of the sound device. Paths are UTF-8.
class SoundFiles {
 public:
  virtual ~SoundFiles() = default;

  virtual PathKind kind(const std::string& path) = 0;
  /// Whether both lead to the same place.
  virtual bool same(const std::string& one, const std::string& other) = 0;
  /// Empty if it cannot be read.
  virtual std::unique_ptr<ByteFile> open(const std::string& path) = 0;
  /// A new, empty file; none if the name is in use or the file cannot be made.
  virtual std::unique_ptr<ByteFile> create(const std::string& path) = 0;
  /// A name in the same folder that is not in use.
  virtual std::string nameBeside(const std::string& path) = 0;
  /// Replaces `to`. False if it stays as it was.
  [[nodiscard]] virtual bool rename(const std::string& from, const std::string& to) = 0;
  virtual void remove(const std::string& path) = 0;
};

}  // namespace qv3
