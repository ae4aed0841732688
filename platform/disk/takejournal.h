#pragma once

#include <memory>
#include <string>

#include "platform/disk/journalwriter.h"
#include "platform/disk/posixfile.h"
#include "recording/journalsink.h"

namespace qv3 {

/// The journal of a take and the place of its sound. While it lives no other program touches them:
/// it holds a lock on the journal.
class TakeJournal final : public JournalSink {
 public:
  /// One that is written: `file` is open for appending and locked.
  TakeJournal(FileTasks& files, std::string path, std::shared_ptr<FileDescriptor> file,
              JournalWriter::Failed failed);
  /// One that was found; it takes nothing more.
  TakeJournal(FileTasks& files, std::string path, std::shared_ptr<FileDescriptor> file);

  void append(std::vector<std::uint8_t> bytes) override;
  void finish() override;
  void remove() override;
  void moveToTrash() override;

  const std::string& path() const { return m_path; }
  /// Where the sound of the take is recorded.
  std::string spoolPath() const;
  /// Its file name, for the journal's header.
  std::string spoolName() const;

  /// Null for one that was found.
  const JournalWriter* writer() const { return m_writer.get(); }

 private:
  FileTasks& m_files;
  std::string m_path;
  std::shared_ptr<FileDescriptor> m_file;  ///< holds the lock
  std::unique_ptr<JournalWriter> m_writer;
};

inline constexpr char kJournalExtension[] = ".journal";

}  // namespace qv3
