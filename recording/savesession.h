#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "recording/filetasks.h"
#include "recording/savetarget.h"
#include "recording/sessionfile.h"
#include "recording/take.h"

namespace qv3 {

inline constexpr char kSaveTitle[] = "Save Recording";
/// Stands before every reason.
inline constexpr char kSaveFailure[] = "The recording could not be saved: ";

/// Writes a session to its ".qvd" file and its sound beside it, in slices. Both are complete under
/// temporary names and safe on the disk before anything else in the folder is touched; then what
/// they replace is set aside and they get their names, the data file last. Wherever this fails, the
/// files that were there stand as they stood and nothing new remains.
class SaveSession {
 public:
  enum class State { Saving, Done, Failed };

  /// `files` and `take` must outlive this; the take must not change meanwhile.
  SaveSession(FileTasks& files, const Take& take, SaveTarget target, const HeaderSettings& header);

  /// Does a bit, and never waits for the disk.
  State step();
  State state() const { return m_state; }

  /// 0 to 1.
  double progress() const;

  /// What to tell the user, once failed.
  const std::string& failure() const { return m_failure; }

  /// Once done; for `noteSaved`.
  const SavedFiles& saved() const { return m_saved; }

 private:
  enum class Phase { Opening, Writing, Closing, Settling };

  void open();
  FileResult openSound();
  FileResult startSpoolCopy();
  FileResult startFileCopy();
  void writeRecords();
  void awaitFiles();
  void exchange();
  FileResult moveNewFiles();
  bool anyFailed();
  void fail(const std::string& reason);

  FileTasks& m_files;
  const Take& m_take;
  SaveTarget m_target;
  HeaderSettings m_header;
  State m_state = State::Saving;
  Phase m_phase = Phase::Opening;
  std::unique_ptr<NewFile> m_data;
  std::unique_ptr<NewFile> m_sound;
  std::unique_ptr<FileWork> m_folderSync;
  std::size_t m_recordsWritten = 0;
  std::uint64_t m_soundBytes = 0;
  std::string m_failure;
  SavedFiles m_saved;
};

}  // namespace qv3
