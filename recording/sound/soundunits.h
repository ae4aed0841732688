#pragma once

#include <cstdint>

#include "recording/sounddevice.h"

namespace qv3 {

/// Places in a sound are counted in frames: one sample of all channels. These turn them into the
/// units that a device speaks, in 64 bits.
class SoundUnits {
 public:
  SoundUnits(std::uint32_t framesPerSecond, std::uint32_t blockSize)
      : m_rate(framesPerSecond), m_block(blockSize) {}

  /// Nearest, where the unit is coarser or finer than a frame.
  std::int64_t fromFrames(std::int64_t frames, TimeFormat format) const;

  /// Down to the start of the frame. Numbers too great for 64 bits give the greatest place.
  std::int64_t toFrames(std::int64_t units, TimeFormat format) const;

 private:
  std::int64_t m_rate;
  std::int64_t m_block;
};

}  // namespace qv3
