#include "platform/disk/journalwriter.h"

#include <QMetaObject>
#include <QObject>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace qv3 {
namespace {

using Clock = std::chrono::steady_clock;

// A healthy disk takes what waits in far less; for a stuck one the program does not stay.
constexpr std::chrono::seconds kPatience{3};

}  // namespace

/// What the two threads share with the writer. They hold it too, for a disk that is stuck may keep
/// them longer than the writer lives.
struct JournalWriter::Work {
  std::shared_ptr<AppendFile> file;
  Failed failed;
  QObject* listener = nullptr;  ///< null once the writer is gone

  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::uint8_t> waiting;
  std::uint64_t written = 0;
  std::uint64_t synced = 0;
  bool ending = false;     ///< nothing more comes
  bool abandoned = false;  ///< and no sync is wanted either
  bool appended = false;   ///< the appending thread is done
  bool broken = false;
  bool told = false;

  void appendAll();
  void syncAll();

  /// Both with the mutex held.
  void fail(const std::string& reason);
  bool nothingToSync() const { return written == synced || broken || abandoned; }
};

void JournalWriter::Work::appendAll() {
  std::unique_lock lock(mutex);
  while (!broken && !abandoned) {
    changed.wait(lock, [this] { return !waiting.empty() || ending; });
    if (waiting.empty() || abandoned) break;
    const std::vector<std::uint8_t> bytes = std::exchange(waiting, {});
    lock.unlock();
    const FileResult result = file->append(bytes);
    lock.lock();
    if (result.ok()) {
      written += bytes.size();
    } else {
      broken = true;
      fail(result.error);
    }
    changed.notify_all();
  }
  appended = true;
  changed.notify_all();
}

void JournalWriter::Work::syncAll() {
  std::unique_lock lock(mutex);
  std::optional<Clock::time_point> last;
  while (true) {
    changed.wait(lock, [this] { return !nothingToSync() || appended; });
    if (nothingToSync()) break;
    if (last) changed.wait_until(lock, *last + kSyncPeriod, [this] { return ending; });
    last = Clock::now();
    const std::uint64_t reached = written;
    lock.unlock();
    const FileResult result = file->sync();
    lock.lock();
    synced = reached;
    if (!result.ok()) fail(result.error);
    changed.notify_all();
  }
}

void JournalWriter::Work::fail(const std::string& reason) {
  if (std::exchange(told, true) || listener == nullptr) return;
  QMetaObject::invokeMethod(
      listener, [tell = failed, reason] { tell(reason); }, Qt::QueuedConnection);
}

JournalWriter::JournalWriter(std::shared_ptr<AppendFile> file, Failed failed)
    : m_work(std::make_shared<Work>()), m_listener(std::make_unique<QObject>()) {
  m_work->file = std::move(file);
  m_work->failed = std::move(failed);
  m_work->listener = m_listener.get();
  std::thread([work = m_work] { work->appendAll(); }).detach();
  std::thread([work = m_work] { work->syncAll(); }).detach();
}

JournalWriter::~JournalWriter() {
  finish();
  std::unique_lock lock(m_work->mutex);
  m_work->listener = nullptr;
  if (m_work->abandoned) return;
  m_work->changed.wait_for(lock, kPatience, [this] { return m_work->appended; });
}

void JournalWriter::append(std::vector<std::uint8_t> bytes) {
  const std::lock_guard lock(m_work->mutex);
  if (m_work->ending || m_work->broken) return;
  m_work->waiting.insert(m_work->waiting.end(), bytes.begin(), bytes.end());
  m_work->changed.notify_all();
}

void JournalWriter::finish() {
  const std::lock_guard lock(m_work->mutex);
  m_work->ending = true;
  m_work->changed.notify_all();
}

void JournalWriter::abandon() {
  const std::lock_guard lock(m_work->mutex);
  m_work->ending = true;
  m_work->abandoned = true;
  m_work->changed.notify_all();
}

std::uint64_t JournalWriter::written() const {
  const std::lock_guard lock(m_work->mutex);
  return m_work->written;
}

std::uint64_t JournalWriter::synced() const {
  const std::lock_guard lock(m_work->mutex);
  return m_work->synced;
}

}  // namespace qv3
