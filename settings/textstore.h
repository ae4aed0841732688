#pragma once

#include <optional>
#include <string>

namespace qv3 {

/// How an attempt to write ended.
struct [[nodiscard]] StoreResult {
  /// The reason in words, empty if it worked.
  std::string error;

  bool ok() const { return error.empty(); }
};

/// Small text files as whole values. Paths are UTF-8; a bare name lies in the current directory.
class TextStore {
 public:
  virtual ~TextStore() = default;

  /// Whether something other than a folder stands there, readable or not.
  virtual bool exists(const std::string& path) const = 0;

  /// The whole file, nothing if there is none or it cannot be read.
  virtual std::optional<std::string> read(const std::string& path) const = 0;

  /// Makes `contents` the whole file, which is created if need be. The file is replaced whole: at
  /// every moment, also if this fails half-way, its name leads to all of the old contents or to all
  /// of the new.
  virtual StoreResult replace(const std::string& path, const std::string& contents) = 0;
};

}  // namespace qv3
