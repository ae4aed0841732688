#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "recording/diskwatch.h"
#include "recording/journalsink.h"
#include "recording/soundspool.h"

namespace qv3::test {

/// What became of each journal, in the order in which they were made.
struct JournalLog {
  std::string fate = "open";
  std::size_t bytes = 0;
};

class FakeJournal final : public JournalSink {
 public:
  explicit FakeJournal(JournalLog& log) : m_log(log) {}
  void append(std::vector<std::uint8_t> bytes) override { m_log.bytes += bytes.size(); }
  void finish() override { m_log.fate = "finished"; }
  void remove() override { m_log.fate = "removed"; }
  void moveToTrash() override { m_log.fate = "trash"; }

 private:
  JournalLog& m_log;
};

/// A device that keeps no sound.
class NoSpool final : public SoundSpool {
 public:
  std::optional<TakeSound> recorded() const override { return std::nullopt; }
  bool settled() const override { return true; }
  std::string failure() const override { return broken; }
  std::string broken;
};

/// A disk with as much room as the test gives it.
class NoDiskLimit final : public DiskSpace {
 public:
  std::optional<DiskRoom> room(const std::string&) const override { return left; }
  std::optional<DiskRoom> left = DiskRoom{std::uint64_t{1} << 40, 1};
};

}  // namespace qv3::test
