#pragma once

#include "recording/diskwatch.h"
#include "recording/filetasks.h"

namespace qv3 {

/// The file system of this machine.
class DiskFiles final : public FileTasks, public DiskSpace {
 public:
  bool isFolder(const std::string& path) const override;
  bool exists(const std::string& path) const override;
  std::vector<std::string> files(const std::string& folder) const override;
  std::optional<std::uint64_t> size(const std::string& path) const override;

  FileResult makeFolder(const std::string& path) override;
  std::unique_ptr<NewFile> createTemporary(const std::string& folder) override;
  std::unique_ptr<ReadAhead> read(const std::string& path) override;
  FileResult rename(const std::string& from, const std::string& to) override;
  FileResult remove(const std::string& path) override;

  Moved moveToTrash(const std::string& path) override;
  FileResult takeFromTrash(const std::string& place, const std::string& path) override;

  std::unique_ptr<FileWork> syncFolder(const std::string& folder) override;

  std::optional<DiskRoom> room(const std::string& folder) const override;
};

}  // namespace qv3
