#pragma once

#include <string>
#include <vector>

#include "recording/filetasks.h"

namespace qv3 {

/// Files that make room for new ones. Nothing of the user's is deleted: they go to the desktop's
/// trash or, where there is none, get a "~" behind their name, "~2", "~3" and so on if that is in
/// use. Remembers where they went, so that they can come back.
class SetAside {
 public:
  explicit SetAside(FileTasks& files) : m_files(files) {}

  FileResult add(const std::string& path);

  /// Puts everything back, as far as that can be done.
  void undo();

 private:
  struct Entry {
    std::string path;
    std::string place;
    bool inTrash = false;
  };

  FileResult renameAside(const std::string& path);

  FileTasks& m_files;
  std::vector<Entry> m_entries;
};

}  // namespace qv3
