#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/disk/recoveryfolder.h"

namespace qv3 {

/// The files of the take that is about to be recorded. Its sound is recorded before its samples
/// are, during the lead-in; the journal is there, and locked, before either, so that nothing that
/// a program leaves behind is without an owner.
class NextTake {
 public:
  /// `folder` must outlive this. `stamp` gives the present moment as it stands in file names;
  /// `failed` is told why a journal cannot be made or written, once for each, the former from
  /// within `newJournal`.
  NextTake(RecoveryFolder& folder, std::function<std::string()> stamp,
           JournalWriter::Failed failed);
  /// A take that never began leaves nothing.
  ~NextTake();
  NextTake(const NextTake&) = delete;
  NextTake& operator=(const NextTake&) = delete;

  /// Record was pressed, with sound: where it is to be recorded; empty if there is no place. The
  /// files of a lead-in that was given up go.
  std::string nextSpool();

  /// The data begins: the journal of the take, beside its sound. Never empty; one that cannot be
  /// made takes everything and does nothing.
  std::unique_ptr<JournalSink> newJournal();

 private:
  void drop();

  RecoveryFolder& m_folder;
  std::function<std::string()> m_stamp;
  JournalWriter::Failed m_failed;
  std::unique_ptr<TakeJournal> m_prepared;
};

}  // namespace qv3
