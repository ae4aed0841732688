#include "platform/disk/diskreadahead.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/disk/posixfile.h"

namespace qv3 {
namespace {

// Small enough that a slow disk shows its progress, and that blocks are used again while they are
// in the processor's cache.
constexpr std::size_t kBlock = 64 * 1024;
constexpr std::size_t kMostBlocks = 16;

}  // namespace

/// What the thread shares with the reader. It holds it too: a slow disk may keep it longer than the
/// reader lives.
struct DiskReadAhead::Work {
  std::mutex mutex;
  std::condition_variable changed;
  std::deque<std::vector<std::uint8_t>> blocks;
  bool ended = false;
  bool cancelled = false;

  void run(const std::string& path);
  bool readBlock(int file);
};

void DiskReadAhead::Work::run(const std::string& path) {
  // What is no plain file is not waited for.
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  while (file.isOpen() && readBlock(file.number())) {
  }
  const std::lock_guard lock(mutex);
  ended = true;
}

/// False if nothing more comes: the end, a failure, or nobody wants it.
bool DiskReadAhead::Work::readBlock(int file) {
  std::vector<std::uint8_t> block(kBlock);
  ssize_t got = 0;
  do {
    got = read(file, block.data(), block.size());
  } while (got < 0 && errno == EINTR);
  if (got <= 0) return false;
  block.resize(static_cast<std::size_t>(got));
  std::unique_lock lock(mutex);
  if (blocks.size() == kMostBlocks) {
    changed.wait(lock, [this] { return blocks.size() <= kMostBlocks / 2 || cancelled; });
  }
  blocks.push_back(std::move(block));
  return !cancelled;
}

DiskReadAhead::DiskReadAhead(const std::string& path) : m_work(std::make_shared<Work>()) {
  std::thread([work = m_work, path] { work->run(path); }).detach();
}

DiskReadAhead::~DiskReadAhead() {
  const std::lock_guard lock(m_work->mutex);
  m_work->cancelled = true;
  m_work->changed.notify_all();
}

std::vector<std::uint8_t> DiskReadAhead::take() {
  const std::lock_guard lock(m_work->mutex);
  if (m_work->blocks.empty()) return {};
  std::vector<std::uint8_t> block = std::move(m_work->blocks.front());
  m_work->blocks.pop_front();
  // Not for every block: waking the thread takes longer than reading one.
  if (m_work->blocks.size() <= kMostBlocks / 2) m_work->changed.notify_all();
  return block;
}

bool DiskReadAhead::atEnd() const {
  const std::lock_guard lock(m_work->mutex);
  return m_work->ended && m_work->blocks.empty();
}

}  // namespace qv3
