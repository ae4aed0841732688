#include "platform/disk/posixfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/errortexts.h"

namespace qv3 {

FileDescriptor::~FileDescriptor() {
  if (isOpen()) close(m_number);
}

FileResult failedWith(int error) {
  return {errortext::system(error != 0 ? error : EIO)};
}

FileResult writeAll(int file, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return failedWith(written < 0 ? errno : ENOSPC);
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return {};
}

FileResult syncToDisk(int file) {
  int result = 0;
  do {
    result = fsync(file);
  } while (result != 0 && errno == EINTR);
  if (result == 0 || errno == EINVAL || errno == ENOTSUP) return {};
  return failedWith(errno);
}

FileResult syncFolderToDisk(const std::string& folder) {
  const FileDescriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!opened.isOpen()) return failedWith(errno);
  return syncToDisk(opened.number());
}

PosixAppendFile::PosixAppendFile(std::shared_ptr<FileDescriptor> file, std::string folder)
    : m_file(std::move(file)), m_folder(std::move(folder)) {}

FileResult PosixAppendFile::append(std::span<const std::uint8_t> bytes) {
  return writeAll(m_file->number(), bytes);
}

/// What is appended to a file without a name is lost with the program.
FileResult PosixAppendFile::sync() {
  struct stat status {};
  if (fstat(m_file->number(), &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 0) {
    return {errortext::kRemoved};
  }
  const FileResult result = syncToDisk(m_file->number());
  if (!result.ok() || m_folderSynced) return result;
  m_folderSynced = true;
  return syncFolderToDisk(m_folder);
}

}  // namespace qv3
