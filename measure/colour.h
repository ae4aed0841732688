#pragma once

#include <cstdint>

namespace qv3 {

/// 24-bit RGB packed as red + 256 x green + 65536 x blue, in memory and in the settings file.
using Colour = std::int32_t;

constexpr Colour kRed = 255;

struct Channels {
  int red = 0;
  int green = 0;
  int blue = 0;
};

constexpr Channels unpack(Colour colour) {
  return {colour & 0xff, (colour >> 8) & 0xff, (colour >> 16) & 0xff};
}

constexpr Colour pack(Channels c) {
  return c.red + 256 * c.green + 65536 * c.blue;
}

}  // namespace qv3
