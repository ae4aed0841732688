#pragma once

#include "recording/sound/bytefile.h"

namespace qv3 {

/// The disk.
class DiskSoundFiles final : public SoundFiles {
 public:
  PathKind kind(const std::string& path) override;
  bool same(const std::string& one, const std::string& other) override;
  std::unique_ptr<ByteFile> open(const std::string& path) override;
  std::unique_ptr<ByteFile> create(const std::string& path) override;
  std::string nameBeside(const std::string& path) override;
  bool rename(const std::string& from, const std::string& to) override;
  void remove(const std::string& path) override;
};

}  // namespace qv3
