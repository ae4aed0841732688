#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "recording/filetasks.h"

namespace qv3 {

/// An open file of the system's; closed with it.
class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : m_number(number) {}
  ~FileDescriptor();
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;

  int number() const { return m_number; }
  bool isOpen() const { return m_number >= 0; }

 private:
  int m_number;
};

/// A failed attempt, in the words of the system's error number.
FileResult failedWith(int error);

/// Writes all of it; what was written before a failure stays.
FileResult writeAll(int file, std::span<const std::uint8_t> bytes);

/// Has everything that was written to a file, or renamed in a folder, on the disk. What has no disk
/// to wait for is no failure.
FileResult syncToDisk(int file);
FileResult syncFolderToDisk(const std::string& folder);

/// A file to which bytes are appended. Its two calls are made from two threads, at the same time.
class AppendFile {
 public:
  virtual ~AppendFile() = default;

  virtual FileResult append(std::span<const std::uint8_t> bytes) = 0;
  /// What was appended before the call is safe from a power cut after it.
  virtual FileResult sync() = 0;
};

class PosixAppendFile final : public AppendFile {
 public:
  /// `file` lies in `folder`, in which it may be new.
  PosixAppendFile(std::shared_ptr<FileDescriptor> file, std::string folder);

  FileResult append(std::span<const std::uint8_t> bytes) override;
  FileResult sync() override;

 private:
  std::shared_ptr<FileDescriptor> m_file;
  std::string m_folder;
  bool m_folderSynced = false;
};

}  // namespace qv3
