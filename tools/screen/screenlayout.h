#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace qv3 {

/// How the picture lies in the file of a virtual display, which is an X window dump: 32 bits a
/// pixel, blue in the lowest byte.
struct ScreenLayout {
  int width = 0;
  int height = 0;
  std::size_t offset = 0;  ///< of the picture within the file
  std::size_t stride = 0;  ///< bytes a row

  std::size_t fileSize() const { return offset + stride * static_cast<std::size_t>(height); }
};

/// Nothing if the file does not begin with the header of such a picture.
std::optional<ScreenLayout> readScreenLayout(std::span<const std::uint8_t> file);

}  // namespace qv3
