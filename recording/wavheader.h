#pragma once

#include <cstdint>
#include <vector>

namespace qv3 {

/// "RIFF", size, "WAVE", "fmt ", 16, the format's 16 bytes, "data", size.
constexpr std::size_t kWavHeaderSize = 4 + 4 + 4 + 4 + 4 + 16 + 4 + 4;
static_assert(kWavHeaderSize == 44);

/// The format counts bytes in 32 bits; whole blocks of recorded sound.
constexpr std::uint64_t kLongestWavData = 0xFFFFFFFFULL - (kWavHeaderSize - 8) - 1;
static_assert(kLongestWavData % 2 == 0);

/// The header of a ".wav" file of recorded sound: PCM, 22050 Hz, 16 bit, one channel. `dataSize` is
/// at most `kLongestWavData`.
std::vector<std::uint8_t> wavHeader(std::uint64_t dataSize);

}  // namespace qv3
