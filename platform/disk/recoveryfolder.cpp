#include "platform/disk/recoveryfolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>
#include <utility>

#include "platform/errortexts.h"

namespace qv3 {
namespace {

constexpr mode_t kMode = 0666;  // less what the user's mask takes
constexpr int kMostNames = 1000;
// More than the longest header.
constexpr std::size_t kOpening = 128 * 1024;

enum class Lock { Taken, InUse, Impossible };

Lock lock(int file) {
  if (flock(file, LOCK_EX | LOCK_NB) == 0) return Lock::Taken;
  return errno == EWOULDBLOCK ? Lock::InUse : Lock::Impossible;
}

/// Whether the path still leads to the open file: between opening and locking somebody else may
/// have removed it.
bool isStill(int file, const std::string& path) {
  struct stat opened {};
  struct stat named {};
  return fstat(file, &opened) == 0 && stat(path.c_str(), &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// For writing where that is allowed: some file systems give no lock to readers.
int openFound(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  return file >= 0 ? file : ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
}

std::vector<std::uint8_t> readOpening(int file) {
  std::vector<std::uint8_t> bytes(kOpening);
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t got =
        pread(file, bytes.data() + size, bytes.size() - size, static_cast<off_t>(size));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    size += static_cast<std::size_t>(got);
  }
  bytes.resize(size);
  return bytes;
}

}  // namespace

std::unique_ptr<std::istream> RecoveryOffer::open() const {
  return std::make_unique<std::ifstream>(journal->path(), std::ios::binary);
}

RecoveryFolder::RecoveryFolder(std::string folder, FileTasks& files)
    : m_folder(std::move(folder)), m_files(files) {
  if (!m_folder.ends_with('/')) m_folder += '/';
}

RecoveryFolder::Created RecoveryFolder::create(const std::string& stamp,
                                               JournalWriter::Failed failed) {
  const FileResult made = m_files.makeFolder(m_folder);
  if (!made.ok()) return {nullptr, errortext::folderNotMade(m_folder, made.error)};
  int error = EEXIST;
  for (int number = 1; error == EEXIST && number <= kMostNames; ++number) {
    const std::string stem = stamp + (number == 1 ? "" : '-' + std::to_string(number));
    const std::string path = m_folder + stem + kJournalExtension;
    const int opened =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC, kMode);
    error = opened < 0 ? errno : EEXIST;
    if (opened < 0) continue;
    auto file = std::make_shared<FileDescriptor>(opened);
    // A scan that came in between takes an empty journal for one that was left behind.
    if (lock(opened) == Lock::InUse || !isStill(opened, path)) continue;
    auto journal = std::make_unique<TakeJournal>(m_files, path, file, failed);
    if (!m_files.exists(journal->spoolPath())) return {std::move(journal), {}};
    journal.reset();
    static_cast<void>(m_files.remove(path).ok());
  }
  return {nullptr, failedWith(error).error};
}

RecoveryFolder::Found RecoveryFolder::scan() {
  Found found;
  std::vector<std::string> names = m_files.files(m_folder);
  std::sort(names.begin(), names.end());
  for (const std::string& name : names) {
    if (name.ends_with(kJournalExtension)) examine(m_folder + name, found);
  }
  return found;
}

void RecoveryFolder::examine(const std::string& path, Found& found) {
  const int opened = openFound(path);
  if (opened < 0) {
    if (errno != ENOENT) found.unreadable.push_back(path);
    return;
  }
  auto file = std::make_shared<FileDescriptor>(opened);
  if (lock(opened) != Lock::Taken || !isStill(opened, path)) return;
  struct stat status {};
  if (fstat(opened, &status) != 0 || !S_ISREG(status.st_mode)) return;
  const auto size = static_cast<std::uint64_t>(status.st_size);
  const std::vector<std::uint8_t> opening = readOpening(opened);
  const bool diskFails = opening.size() < std::min<std::uint64_t>(size, kOpening);
  JournalReader reader;
  reader.take(opening);
  auto journal = std::make_unique<TakeJournal>(m_files, path, std::move(file));
  const bool headerStands = reader.headerSize() > 0;
  const std::uint64_t samples = headerStands ? (size - reader.headerSize()) / kRecordSize : 0;
  if (diskFails || reader.state() == JournalReader::State::Unreadable ||
      (samples > 0 && reader.records().empty())) {
    found.unreadable.push_back(path);
  } else if (samples == 0) {
    journal->remove();
  } else {
    found.offers.push_back({std::move(journal), reader.header(), samples, size});
  }
}

}  // namespace qv3
