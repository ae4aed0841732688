#pragma once

#include "settings/textstore.h"

namespace qv3 {

/// TextStore on the disk. A replacement is written under another name in the same folder and then
/// renamed, so the folder has to be writable. A symbolic link stays and its target is replaced; a
/// file that was there keeps its permissions, and one that nobody may write to is refused. It does
/// not wait until the disk has the data: after a power cut the old contents may be back.
class DiskTextStore : public TextStore {
 public:
  bool exists(const std::string& path) const override;
  std::optional<std::string> read(const std::string& path) const override;
  StoreResult replace(const std::string& path, const std::string& contents) override;
};

}  // namespace qv3
