#pragma once

#include <condition_variable>
#include <cstddef>
#include <limits>
#include <mutex>
#include <string>

#include "platform/disk/posixfile.h"

namespace qv3::test {

/// A gate that is open or shut; whoever passes through a shut one waits.
class Gate {
 public:
  void shut() { set(false); }
  void open() { set(true); }
  void pass() {
    std::unique_lock lock(m_mutex);
    m_opened.wait(lock, [this] { return m_open; });
  }

 private:
  void set(bool open) {
    const std::lock_guard lock(m_mutex);
    m_open = open;
    m_opened.notify_all();
  }

  std::mutex m_mutex;
  std::condition_variable m_opened;
  bool m_open = true;
};

/// AppendFile in memory, which fails after so many bytes and waits where a gate is shut. It must be
/// asked for its contents only when nobody writes any more.
class MemoryAppendFile : public AppendFile {
 public:
  FileResult append(std::span<const std::uint8_t> bytes) override {
    appending.pass();
    const std::size_t fitting = std::min(bytes.size(), room);
    contents.append(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(fitting));
    room -= fitting;
    return fitting == bytes.size() ? FileResult{} : FileResult{"the disk is full"};
  }

  FileResult sync() override {
    syncing.pass();
    return {syncError};
  }

  Gate appending;
  Gate syncing;
  std::size_t room = std::numeric_limits<std::size_t>::max();
  std::string contents;
  std::string syncError;
};

}  // namespace qv3::test
