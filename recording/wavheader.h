#pragma once

#include <cstdint>
#include <vector>

#include "recording/sounddevice.h"

namespace qv3 {

/// "RIFF", size, "WAVE", "fmt ", 16, the format's 16 bytes, "data", size.
constexpr std::size_t kPcmHeaderSize = 4 + 4 + 4 + 4 + 4 + 16 + 4 + 4;
static_assert(kPcmHeaderSize == 44);

/// The format counts bytes in 32 bits; whole blocks of recorded sound.
constexpr std::uint64_t kLongestWavData = 0xFFFFFFFFULL - (kPcmHeaderSize - 8) - 1;
static_assert(kLongestWavData % 2 == 0);

/// What recordings are made of: 22050 Hz, 16 bit, one channel.
WaveFormat recordedFormat();

/// The header of a ".wav" file of integer PCM. A file longer than 32 bits can tell gets the
/// greatest sizes that they can.
std::vector<std::uint8_t> pcmHeader(const WaveFormat& format, std::uint64_t dataSize);

}  // namespace qv3
