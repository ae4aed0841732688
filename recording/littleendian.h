#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qv3 {

/// Appends an unsigned number, lowest byte first.
template <typename Number>
void putLittle(std::vector<std::uint8_t>& to, Number value) {
  static_assert(std::is_unsigned_v<Number>);
  for (std::size_t index = 0; index < sizeof(Number); ++index) {
    to.push_back(static_cast<std::uint8_t>(value >> (8 * index)));
  }
}

/// The unsigned number at `offset`, lowest byte first; all its bytes must be there.
template <typename Number>
Number getLittle(std::span<const std::uint8_t> from, std::size_t offset) {
  static_assert(std::is_unsigned_v<Number>);
  std::uint64_t value = 0;
  for (std::size_t index = 0; index < sizeof(Number); ++index) {
    value |= static_cast<std::uint64_t>(from[offset + index]) << (8 * index);
  }
  return static_cast<Number>(value);
}

/// The letters of a chunk's name.
inline void putWord(std::vector<std::uint8_t>& to, std::string_view word) {
  for (const char letter : word) to.push_back(static_cast<std::uint8_t>(letter));
}

/// A size that 32 bits cannot tell is told as the greatest they can.
inline std::uint32_t to32(std::uint64_t size) {
  constexpr std::uint64_t kMost = 0xFFFFFFFF;
  return static_cast<std::uint32_t>(size < kMost ? size : kMost);
}

}  // namespace qv3
