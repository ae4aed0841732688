#include "recording/foldernames.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "recording/naming.h"

namespace qv3 {
namespace {

constexpr std::string_view kData = ".qvd";
constexpr std::size_t kSuffixCharacters = 3;

/// Characters of UTF-8, not bytes.
std::size_t characters(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char c) { return !isInsideCharacter(c); }));
}

bool isNumbered(std::string_view name, std::string_view prefix, std::string_view extension) {
  if (name.size() < prefix.size() + extension.size()) return false;
  if (!name.starts_with(prefix) || !name.ends_with(extension)) return false;
  name.remove_prefix(prefix.size());
  name.remove_suffix(extension.size());
  return characters(name) == kSuffixCharacters;
}

}  // namespace

std::optional<std::string> findCompanion(const FileNames& names, const std::string& base,
                                         std::string_view extension) {
  const std::string exact = base + std::string(extension);
  std::optional<std::string> similar;
  for (const std::string& name : names) {
    if (name == exact) return name;
    if (sameIgnoringCase(name, exact) && (!similar || name < *similar)) similar = name;
  }
  return similar;
}

FileNames replacedFiles(const FileNames& names, const std::string& base) {
  const std::set<std::string_view> all(names.begin(), names.end());
  FileNames replaced;
  if (all.count(base + std::string(kData)) > 0) replaced.push_back(base + std::string(kData));
  for (const std::string_view extension : {".wav", ".mp3"}) {
    const std::string exact = base + std::string(extension);
    for (const std::string& name : names) {
      if (!sameIgnoringCase(name, exact)) continue;
      const std::string owner = name.substr(0, base.size()) + std::string(kData);
      if (name == exact || owner == base + std::string(kData) || all.count(owner) == 0) {
        replaced.push_back(name);
      }
    }
  }
  return replaced;
}

FileNames resetFiles(const FileNames& names, const std::string& prefix) {
  FileNames taken;
  for (const std::string_view extension : {std::string_view(".wav"), kData}) {
    std::copy_if(names.begin(), names.end(), std::back_inserter(taken),
                 [&](const std::string& name) { return isNumbered(name, prefix, extension); });
  }
  return taken;
}

}  // namespace qv3
