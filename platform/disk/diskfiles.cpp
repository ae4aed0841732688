#include "platform/disk/diskfiles.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <atomic>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <thread>

#include "platform/disk/diskreadahead.h"
#include "platform/disk/newfile.h"
#include "platform/disk/posixfile.h"
#include "platform/errortexts.h"

namespace qv3 {
namespace {

namespace fs = std::filesystem;

/// Syncs a folder, and the one it lies in, for it may be new there.
class FolderSync final : public FileWork {
 public:
  explicit FolderSync(const std::string& folder) {
    std::thread([busy = m_busy, folder] {
      for (const std::string& each : {folder, folder + ".."}) {
        static_cast<void>(syncFolderToDisk(each).ok());
      }
      *busy = false;
    }).detach();
  }

  State state() const override { return *m_busy ? State::Busy : State::Finished; }
  std::string error() const override { return {}; }

 private:
  std::shared_ptr<std::atomic<bool>> m_busy = std::make_shared<std::atomic<bool>>(true);
};

/// The note that the trash keeps of a file in its "files", in its "info".
fs::path trashNote(const fs::path& place) {
  return place.parent_path().parent_path() / "info" / (place.filename().string() + ".trashinfo");
}

}  // namespace

bool DiskFiles::isFolder(const std::string& path) const {
  std::error_code error;
  return fs::is_directory(path, error);
}

bool DiskFiles::exists(const std::string& path) const {
  std::error_code error;
  return fs::exists(fs::symlink_status(path, error));
}

std::vector<std::string> DiskFiles::files(const std::string& folder) const {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unknown;
    const bool link = entry->is_symlink(unknown) && !entry->is_directory(unknown);
    if (link || entry->is_regular_file(unknown)) names.push_back(entry->path().filename().string());
  }
  return names;
}

std::optional<std::uint64_t> DiskFiles::size(const std::string& path) const {
  std::error_code error;
  const std::uintmax_t bytes = fs::file_size(path, error);
  if (error) return std::nullopt;
  return bytes;
}

FileResult DiskFiles::makeFolder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  return error ? FileResult{error.message()} : FileResult{};
}

std::unique_ptr<NewFile> DiskFiles::createTemporary(const std::string& folder) {
  return std::make_unique<DiskNewFile>(folder);
}

std::unique_ptr<ReadAhead> DiskFiles::read(const std::string& path) {
  return std::make_unique<DiskReadAhead>(path);
}

FileResult DiskFiles::rename(const std::string& from, const std::string& to) {
  return renameToFree(from, to);
}

FileResult DiskFiles::remove(const std::string& path) {
  return unlink(path.c_str()) == 0 ? FileResult{} : failedWith(errno);
}

/// The toolkit makes the trash, but not the folder that it lies in, and without that takes the
/// current folder for a trash.
Moved DiskFiles::moveToTrash(const std::string& path) {
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  if (data.isEmpty() || !QDir().mkpath(data)) return {{}, errortext::kNoTrash};
  QString place;
  if (!QFile::moveToTrash(QString::fromStdString(path), &place)) return {{}, errortext::kNoTrash};
  return {place.toStdString(), {}};
}

FileResult DiskFiles::takeFromTrash(const std::string& place, const std::string& path) {
  const FileResult result = renameToFree(place, path);
  std::error_code ignored;
  if (result.ok()) fs::remove(trashNote(place), ignored);
  return result;
}

std::unique_ptr<FileWork> DiskFiles::syncFolder(const std::string& folder) {
  return std::make_unique<FolderSync>(folder);
}

std::optional<DiskRoom> DiskFiles::room(const std::string& folder) const {
  struct statvfs disk {};
  struct stat place {};
  if (stat(folder.c_str(), &place) != 0 || !S_ISDIR(place.st_mode)) return std::nullopt;
  if (statvfs(folder.c_str(), &disk) != 0) return std::nullopt;
  return DiskRoom{static_cast<std::uint64_t>(disk.f_bavail) * disk.f_frsize, place.st_dev};
}

}  // namespace qv3
