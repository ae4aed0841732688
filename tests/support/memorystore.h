#pragma once

#include <map>
#include <string>

#include "settings/textstore.h"

namespace qv3::test {

/// TextStore in memory that counts what is written and fails when told to.
class MemoryStore : public TextStore {
 public:
  bool exists(const std::string& path) const override { return files.count(path) > 0; }

  std::optional<std::string> read(const std::string& path) const override {
    const auto file = files.find(path);
    if (unreadable || file == files.end()) return std::nullopt;
    return file->second;
  }

  StoreResult replace(const std::string& path, const std::string& contents) override {
    ++replacements;
    if (!failure.empty()) return {failure};
    files[path] = contents;
    return {};
  }

  std::map<std::string, std::string> files;
  int replacements = 0;
  bool unreadable = false;
  std::string failure;
};

}  // namespace qv3::test
