#pragma once

#include <cstdint>
#include <istream>
#include <memory>
#include <string>
#include <vector>

#include "platform/disk/takejournal.h"
#include "recording/journal.h"

namespace qv3 {

/// A recording that a program left behind without saving it. It is this program's as long as this
/// lives: "Recover" reads it, "Discard" calls the journal's `remove`, "Later" lets it go.
struct RecoveryOffer {
  std::unique_ptr<TakeJournal> journal;
  JournalHeader header;
  std::uint64_t samples = 0;  ///< at most; a power cut may have left fewer
  std::uint64_t size = 0;     ///< of the journal in bytes

  /// The journal, to be read from its begin.
  std::unique_ptr<std::istream> open() const;
};

/// The folder of the journals of all takes that are not saved, and of their sound.
class RecoveryFolder {
 public:
  /// `folder` lies in the state folder and need not exist yet.
  RecoveryFolder(std::string folder, FileTasks& files);

  struct Created {
    std::unique_ptr<TakeJournal> journal;  ///< null on failure
    std::string error;
  };
  /// A new journal, empty and locked, named by `stamp`, the moment as it stands in file names.
  Created create(const std::string& stamp, JournalWriter::Failed failed);

  struct Found {
    std::vector<RecoveryOffer> offers;
    std::vector<std::string> unreadable;  ///< journals that are left as they are
  };
  /// What no running program holds. Journals without a sample are removed with their sound.
  Found scan();

 private:
  void examine(const std::string& path, Found& found);

  std::string m_folder;
  FileTasks& m_files;
};

}  // namespace qv3
