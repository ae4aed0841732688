#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/disk/posixfile.h"

class QObject;

namespace qv3 {

/// Appends to a file without ever keeping its caller: one thread writes what it is handed, another
/// sees that it reaches the disk, so that a disk that takes long for that holds back no byte. A
/// program that is killed loses what was handed over in the last instant; a power cut loses what
/// came since the last sync began.
class JournalWriter {
 public:
  /// So often that a sync may take as long again before two seconds are at stake.
  static constexpr std::chrono::milliseconds kSyncPeriod{1000};

  using Failed = std::function<void(const std::string& reason)>;

  /// `failed` is told the first failure, once, from the event loop of the thread that made this.
  /// After a failed write nothing more is written.
  JournalWriter(std::shared_ptr<AppendFile> file, Failed failed);

  /// What was handed over is written first, unless the disk is stuck.
  ~JournalWriter();
  JournalWriter(const JournalWriter&) = delete;
  JournalWriter& operator=(const JournalWriter&) = delete;

  void append(std::vector<std::uint8_t> bytes);

  /// Nothing more comes: it is synced at once.
  void finish();
  /// Nor is what still waits worth writing.
  void abandon();

  /// Bytes that are in the system's hands, and those that are on the disk.
  std::uint64_t written() const;
  std::uint64_t synced() const;

 private:
  struct Work;

  std::shared_ptr<Work> m_work;
  std::unique_ptr<QObject> m_listener;
};

}  // namespace qv3
