#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace qv3 {

/// Sound that can be played: 16-bit samples, the channels of a frame side by side. Read by one
/// thread at a time.
class SoundReader {
 public:
  virtual ~SoundReader() = default;

  virtual std::uint32_t framesPerSecond() const = 0;
  virtual std::uint32_t channels() const = 0;
  virtual std::int64_t frames() const = 0;

  /// Fills whole frames from `frame` on. What cannot be had, behind the end too, is silence.
  virtual void read(std::int64_t frame, std::span<std::int16_t> to) = 0;
};

}  // namespace qv3
