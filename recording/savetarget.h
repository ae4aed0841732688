#pragma once

#include <string>
#include <vector>

#include "recording/filetasks.h"

namespace qv3 {

/// Where a recording is to be saved: a folder that exists, and a name without extension, which may
/// lead through folders that do not exist yet.
struct SaveTarget {
  std::string folder;
  std::string name;

  std::string basePath() const;
  /// The folder that will hold the files, with '/' at its end, and their name in it.
  std::string fileFolder() const;
  std::string fileName() const;
};

/// What was chosen in a save dialog: ".qvd" is added unless the name ends in it, in any case; then
/// these four characters are cut.
SaveTarget typedTarget(const std::string& path);

/// Whether a recording can be saved there, as far as that shows beforehand.
FileResult checkTarget(const FileTasks& files, const SaveTarget& target);

/// Full paths of what a save would replace: what an overwrite question has to name.
std::vector<std::string> filesReplacedBy(const FileTasks& files, const SaveTarget& target);

/// Sets aside the files that Reset takes. An empty folder takes nothing; failures are not told.
void resetNumberedFiles(FileTasks& files, const SaveTarget& prefix);

}  // namespace qv3
