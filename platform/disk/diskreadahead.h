#pragma once

#include <memory>
#include <string>

#include "recording/filetasks.h"

namespace qv3 {

/// Reads a file on a thread of its own, never more than a megabyte ahead of whoever takes it.
class DiskReadAhead final : public ReadAhead {
 public:
  explicit DiskReadAhead(const std::string& path);
  /// Does not wait for a disk that stands still.
  ~DiskReadAhead() override;
  DiskReadAhead(const DiskReadAhead&) = delete;
  DiskReadAhead& operator=(const DiskReadAhead&) = delete;

  std::vector<std::uint8_t> take() override;
  bool atEnd() const override;

 private:
  struct Work;

  std::shared_ptr<Work> m_work;
};

}  // namespace qv3
