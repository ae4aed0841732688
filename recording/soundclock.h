#pragma once

#include <cstdint>
#include <optional>

namespace qv3 {

/// The clock of a recording with sound: bytes of sound since `record` found the device.
class SoundClock {
 public:
  virtual ~SoundClock() = default;

  /// Position in the device's units; nothing where the device answers with an error.
  virtual std::optional<std::int64_t> position() = 0;
};

}  // namespace qv3
