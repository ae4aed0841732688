#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qv3 {

/// How an attempt with a file ended.
struct [[nodiscard]] FileResult {
  /// The reason in words, empty if it worked.
  std::string error;

  bool ok() const { return error.empty(); }
};

/// Work on the disk that goes on by itself and is asked how far it is.
class FileWork {
 public:
  enum class State {
    Ready,     ///< takes more
    Busy,      ///< has enough to do for now
    Finished,  ///< all of it is on the disk, safe from a power cut
    Failed,
  };

  virtual ~FileWork() = default;
  virtual State state() const = 0;
  /// The reason in words, once the state is Failed.
  virtual std::string error() const = 0;
};

/// A new file under a temporary name. No call waits for the disk: what is asked for is done in its
/// order, and the first failure, which is told by the state, ends it. A file that was not moved to
/// its name is gone when this is.
class NewFile : public FileWork {
 public:
  virtual void write(std::vector<std::uint8_t> bytes) = 0;
  /// `length` bytes of `path` from `offset`; fewer are a failure.
  virtual void copyFrom(const std::string& path, std::uint64_t offset, std::uint64_t length) = 0;
  virtual void writeZeros(std::uint64_t count) = 0;
  /// Nothing more comes.
  virtual void finish() = 0;

  /// Bytes written so far.
  virtual std::uint64_t written() const = 0;

  /// Once finished: gives the file its name, which must not be in use.
  virtual FileResult moveTo(const std::string& path) = 0;
};

/// A file that is read from its begin by itself, somewhat ahead of whoever takes it. No call waits
/// for the disk.
class ReadAhead {
 public:
  virtual ~ReadAhead() = default;

  /// The next bytes that were read; none while the disk has not brought any, and after the end.
  virtual std::vector<std::uint8_t> take() = 0;
  /// Nothing more comes: all was taken that could be read.
  virtual bool atEnd() const = 0;
};

/// Where a file was put.
struct [[nodiscard]] Moved {
  std::string place;  ///< its present path; empty if it stays where it was
  std::string error;

  bool ok() const { return error.empty(); }
};

/// The file system, as far as recordings need it. Paths are UTF-8, with '/'.
class FileTasks {
 public:
  virtual ~FileTasks() = default;

  virtual bool isFolder(const std::string& path) const = 0;
  /// Whether the name is in use, if only by a link that leads nowhere.
  virtual bool exists(const std::string& path) const = 0;
  /// Names of the plain files in a folder, and of links unless they lead to a folder. Empty if it
  /// cannot be read.
  virtual std::vector<std::string> files(const std::string& folder) const = 0;
  /// Bytes of a plain file, a link's target for a link; nothing if there is none.
  virtual std::optional<std::uint64_t> size(const std::string& path) const = 0;

  /// Makes a folder and those it lies in; no error if it is there.
  virtual FileResult makeFolder(const std::string& path) = 0;
  /// Never empty; a file that cannot be made has failed.
  virtual std::unique_ptr<NewFile> createTemporary(const std::string& folder) = 0;
  /// Never empty; a file that cannot be read ends at once.
  virtual std::unique_ptr<ReadAhead> read(const std::string& path) = 0;
  /// `to` must not be in use.
  virtual FileResult rename(const std::string& from, const std::string& to) = 0;
  virtual FileResult remove(const std::string& path) = 0;

  /// To the desktop's trash. Whoever has none says so by an error.
  virtual Moved moveToTrash(const std::string& path) = 0;
  /// Takes a file back out of the trash, from the place that `moveToTrash` told.
  virtual FileResult takeFromTrash(const std::string& place, const std::string& path) = 0;

  /// Makes what was renamed in a folder safe from a power cut. Never empty.
  virtual std::unique_ptr<FileWork> syncFolder(const std::string& folder) = 0;
};

}  // namespace qv3
