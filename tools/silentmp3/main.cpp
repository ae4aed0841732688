#include <array>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <vector>

// Writes the silent timing track: three seconds of MPEG-1 layer III, 48 kHz, mono, 32 kbit/s. At
// this rate every frame is 24 ms in exactly 96 bytes. A frame whose side information is all zero
// has no spectrum and so is silence; its rest is padding.

namespace {

constexpr std::array<std::uint8_t, 4> kHeader = {0xFF, 0xFB, 0x14, 0xC4};
constexpr std::size_t kFrameBytes = 1152 / 8 * 32000 / 48000;
static_assert(kFrameBytes == 96);
constexpr int kFrames = 125;

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "Usage: silent-mp3 FILE\n";
    return 2;
  }
  std::vector<char> frame(kFrameBytes, 0);
  for (std::size_t index = 0; index < kHeader.size(); ++index) {
    frame[index] = static_cast<char>(kHeader[index]);
  }
  std::ofstream file(argv[1], std::ios::binary | std::ios::trunc);
  for (int count = 0; count < kFrames; ++count) {
    file.write(frame.data(), static_cast<std::streamsize>(frame.size()));
  }
  file.close();
  if (!file) std::cerr << "silent-mp3: cannot write " << argv[1] << '\n';
  return file ? 0 : 1;
}
