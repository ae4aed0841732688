#include "platform/disk/newfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <mutex>
#include <random>
#include <thread>
#include <utility>

#include "platform/errortexts.h"

namespace qv3 {
namespace {

constexpr std::size_t kBlock = 256 * 1024;
constexpr std::size_t kMostPieces = 4;  // that wait before the file is busy
constexpr mode_t kMode = 0666;          // less what the user's mask takes
constexpr int kMostNames = 100;

std::string freeName(const std::string& folder) {
  std::random_device random;
  return folder + "qv3-" + std::to_string(random()) + ".tmp";
}

}  // namespace

/// What is to be written next: `bytes`, or `length` bytes of a file, or as many zeros.
struct DiskNewFile::Piece {
  std::vector<std::uint8_t> bytes;
  std::string source;
  std::uint64_t offset = 0;
  std::uint64_t length = 0;
};

/// What the thread shares with the file. It holds it too: a slow disk may keep it longer than the
/// file lives.
struct DiskNewFile::Work {
  std::unique_ptr<FileDescriptor> file;

  std::mutex mutex;
  std::condition_variable changed;
  std::deque<Piece> pieces;
  std::size_t unfinished = 0;  ///< pieces that wait or are being written
  std::uint64_t written = 0;
  bool ending = false;
  bool cancelled = false;
  bool onDisk = false;
  std::string error;

  void run();
  FileResult writePiece(const Piece& piece);
  FileResult writeBlock(std::span<const std::uint8_t> bytes);
  FileResult copy(const Piece& piece);
  FileResult writeZeros(std::uint64_t count);
};

void DiskNewFile::Work::run() {
  std::unique_lock lock(mutex);
  while (error.empty() && !cancelled) {
    changed.wait(lock, [this] { return !pieces.empty() || ending || cancelled; });
    if (pieces.empty() || cancelled) break;
    const Piece piece = std::move(pieces.front());
    pieces.pop_front();
    lock.unlock();
    const FileResult result = writePiece(piece);
    lock.lock();
    --unfinished;
    error = result.error;
  }
  if (cancelled || !error.empty()) return;
  lock.unlock();
  const FileResult result = syncToDisk(file->number());
  lock.lock();
  error = result.error;
  onDisk = result.ok();
}

FileResult DiskNewFile::Work::writePiece(const Piece& piece) {
  if (!piece.source.empty()) return copy(piece);
  return piece.bytes.empty() ? writeZeros(piece.length) : writeBlock(piece.bytes);
}

FileResult DiskNewFile::Work::writeBlock(std::span<const std::uint8_t> bytes) {
  const FileResult result = writeAll(file->number(), bytes);
  const std::lock_guard lock(mutex);
  if (result.ok()) written += bytes.size();
  return cancelled ? failedWith(ECANCELED) : result;
}

FileResult DiskNewFile::Work::copy(const Piece& piece) {
  if (piece.length == 0) return {};
  const FileDescriptor source(open(piece.source.c_str(), O_RDONLY | O_CLOEXEC));
  if (!source.isOpen()) return failedWith(errno);
  std::vector<std::uint8_t> block(kBlock);
  std::uint64_t done = 0;
  while (done < piece.length) {
    const auto wanted =
        static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, piece.length - done));
    const ssize_t got =
        pread(source.number(), block.data(), wanted, static_cast<off_t>(piece.offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return failedWith(errno);
    if (got == 0) return {errortext::endsEarly(piece.source)};
    const FileResult result = writeBlock(std::span(block).first(static_cast<std::size_t>(got)));
    if (!result.ok()) return result;
    done += static_cast<std::uint64_t>(got);
  }
  return {};
}

FileResult DiskNewFile::Work::writeZeros(std::uint64_t count) {
  const std::vector<std::uint8_t> block(std::min<std::uint64_t>(kBlock, count));
  FileResult result;
  while (count > 0 && result.ok()) {
    const std::uint64_t part = std::min<std::uint64_t>(block.size(), count);
    result = writeBlock(std::span(block).first(part));
    count -= part;
  }
  return result;
}

DiskNewFile::DiskNewFile(const std::string& folder) : m_work(std::make_shared<Work>()) {
  int file = -1;
  int error = EEXIST;
  for (int attempt = 0; file < 0 && error == EEXIST && attempt < kMostNames; ++attempt) {
    m_path = freeName(folder);
    file = open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kMode);
    error = file < 0 ? errno : 0;
  }
  if (file < 0) {
    m_path.clear();
    m_work->error = failedWith(error).error;
    return;
  }
  m_work->file = std::make_unique<FileDescriptor>(file);
  std::thread([work = m_work] { work->run(); }).detach();
}

DiskNewFile::~DiskNewFile() {
  {
    const std::lock_guard lock(m_work->mutex);
    m_work->cancelled = true;
    m_work->changed.notify_all();
  }
  if (!m_path.empty()) unlink(m_path.c_str());
}

NewFile::State DiskNewFile::state() const {
  const std::lock_guard lock(m_work->mutex);
  if (!m_work->error.empty()) return State::Failed;
  if (m_work->onDisk) return State::Finished;
  return m_work->ending || m_work->unfinished >= kMostPieces ? State::Busy : State::Ready;
}

std::string DiskNewFile::error() const {
  const std::lock_guard lock(m_work->mutex);
  return m_work->error;
}

std::uint64_t DiskNewFile::written() const {
  const std::lock_guard lock(m_work->mutex);
  return m_work->written;
}

void DiskNewFile::write(std::vector<std::uint8_t> bytes) {
  add({std::move(bytes), {}, 0, 0});
}

void DiskNewFile::copyFrom(const std::string& path, std::uint64_t offset, std::uint64_t length) {
  add({{}, path, offset, length});
}

void DiskNewFile::writeZeros(std::uint64_t count) {
  add({{}, {}, 0, count});
}

void DiskNewFile::add(Piece piece) {
  const std::lock_guard lock(m_work->mutex);
  m_work->pieces.push_back(std::move(piece));
  ++m_work->unfinished;
  m_work->changed.notify_all();
}

void DiskNewFile::finish() {
  const std::lock_guard lock(m_work->mutex);
  m_work->ending = true;
  m_work->changed.notify_all();
}

FileResult DiskNewFile::moveTo(const std::string& path) {
  const FileResult result = renameToFree(m_path, path);
  if (result.ok()) m_path.clear();
  return result;
}

FileResult renameToFree(const std::string& from, const std::string& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
  if (errno != EINVAL && errno != ENOSYS) return failedWith(errno);
  // A file system that cannot say it in one step.
  struct stat there {};
  if (lstat(to.c_str(), &there) == 0) return failedWith(EEXIST);
  return rename(from.c_str(), to.c_str()) == 0 ? FileResult{} : failedWith(errno);
}

}  // namespace qv3
