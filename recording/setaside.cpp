#include "recording/setaside.h"

namespace qv3 {
namespace {

// A folder in which so many of them are in use is not worth the wait for a free one.
constexpr int kMostTildes = 999;

}  // namespace

FileResult SetAside::add(const std::string& path) {
  const Moved trashed = m_files.moveToTrash(path);
  if (!trashed.ok()) return renameAside(path);
  m_entries.push_back({path, trashed.place, true});
  return {};
}

FileResult SetAside::renameAside(const std::string& path) {
  FileResult result;
  for (int number = 1; number <= kMostTildes; ++number) {
    const std::string place = path + '~' + (number == 1 ? "" : std::to_string(number));
    result = m_files.rename(path, place);
    if (!result.ok() && m_files.exists(place)) continue;
    if (result.ok()) m_entries.push_back({path, place, false});
    break;
  }
  return result;
}

void SetAside::undo() {
  for (; !m_entries.empty(); m_entries.pop_back()) {
    const Entry& last = m_entries.back();
    const FileResult result = last.inTrash ? m_files.takeFromTrash(last.place, last.path)
                                           : m_files.rename(last.place, last.path);
    static_cast<void>(result.ok());  // a file that cannot come back is safe where it is
  }
}

}  // namespace qv3
