#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/disk/posixfile.h"
#include "recording/filetasks.h"

namespace qv3 {

/// NewFile on the disk, written by a thread of its own.
class DiskNewFile final : public NewFile {
 public:
  /// In `folder`, which ends in '/', under a name that is not in use.
  explicit DiskNewFile(const std::string& folder);
  ~DiskNewFile() override;
  DiskNewFile(const DiskNewFile&) = delete;
  DiskNewFile& operator=(const DiskNewFile&) = delete;

  State state() const override;
  std::string error() const override;

  void write(std::vector<std::uint8_t> bytes) override;
  void copyFrom(const std::string& path, std::uint64_t offset, std::uint64_t length) override;
  void writeZeros(std::uint64_t count) override;
  void finish() override;
  std::uint64_t written() const override;
  FileResult moveTo(const std::string& path) override;

 private:
  struct Piece;
  struct Work;

  void add(Piece piece);

  std::shared_ptr<Work> m_work;
  std::string m_path;  ///< empty if there is no such file (any more)
};

/// Renames without ever replacing anything.
FileResult renameToFree(const std::string& from, const std::string& to);

}  // namespace qv3
