#include "recording/savetarget.h"

#include "recording/foldernames.h"
#include "recording/naming.h"
#include "recording/setaside.h"

namespace qv3 {
namespace {

constexpr std::string_view kData = ".qvd";
constexpr std::size_t kLongestName = 255;  // bytes, in the common file systems

std::size_t nameAt(const std::string& path) {
  return path.rfind('/') + 1;  // npos + 1 is 0
}

std::vector<std::string> inFolder(const std::string& folder, std::vector<std::string> names) {
  for (std::string& name : names) name.insert(0, folder);
  return names;
}

}  // namespace

std::string SaveTarget::basePath() const {
  const bool bare = folder.empty() || folder.ends_with('/');
  return folder + (bare ? "" : "/") + name;
}

std::string SaveTarget::fileFolder() const {
  const std::string base = basePath();
  return base.substr(0, nameAt(base));
}

std::string SaveTarget::fileName() const {
  const std::string base = basePath();
  return base.substr(nameAt(base));
}

SaveTarget typedTarget(const std::string& path) {
  std::string base = withExtension(path, kData);
  base.resize(base.size() - kData.size());
  const std::size_t name = nameAt(base);
  return {base.substr(0, name), base.substr(name)};
}

FileResult checkTarget(const FileTasks& files, const SaveTarget& target) {
  if (target.folder.empty()) return {"no folder is chosen"};
  // A relative path would lead to wherever the program happens to stand.
  if (!target.folder.starts_with('/') || !files.isFolder(target.folder)) {
    return {"the folder \"" + target.folder + "\" does not exist"};
  }
  if (target.basePath().find('"') != std::string::npos) {
    return {"the path holds a quotation mark: " + target.basePath()};
  }
  const std::string name = target.fileName();
  if (name.empty()) return {"the name is empty"};
  if (name.size() + kData.size() > kLongestName) return {"the name is too long"};
  return {};
}

std::vector<std::string> filesReplacedBy(const FileTasks& files, const SaveTarget& target) {
  const std::string folder = target.fileFolder();
  return inFolder(folder, replacedFiles(files.files(folder), target.fileName()));
}

void resetNumberedFiles(FileTasks& files, const SaveTarget& prefix) {
  if (prefix.folder.empty()) return;
  const std::string folder = prefix.fileFolder();
  SetAside aside(files);
  for (const auto& path : inFolder(folder, resetFiles(files.files(folder), prefix.fileName()))) {
    static_cast<void>(aside.add(path).ok());
  }
}

}  // namespace qv3
