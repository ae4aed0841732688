#include "platform/disk/foundspool.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <vector>

#include "platform/disk/posixfile.h"
#include "recording/littleendian.h"
#include "recording/recorder.h"
#include "recording/sound/disksoundfiles.h"
#include "recording/sound/spool.h"
#include "recording/sound/wavlayout.h"

namespace qv3 {
namespace {

constexpr std::uint64_t kChunkHeader = 8;
constexpr std::uint64_t kLeadIn = kSoundBytesPerSecond;
// The size of the chunk before the sound stands before the sound's own header.
constexpr std::uint64_t kMarkSizeAt = Spool::kDataStart - kChunkHeader - 4;

bool writeAt(int file, std::uint64_t offset, const std::vector<std::uint8_t>& bytes) {
  return pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset)) ==
         static_cast<ssize_t>(bytes.size());
}

/// Half a sample at the end goes, what is missing becomes zeros.
bool endAt(int file, std::uint64_t size) {
  return ftruncate(file, static_cast<off_t>(size)) == 0;
}

/// As the device cuts it at the end of a recording: the size of the chunk is written last, so that
/// the file reads well at every moment.
bool cutLeadIn(int file, std::uint64_t length) {
  std::vector<std::uint8_t> header = {'d', 'a', 't', 'a'};
  putLittle(header, static_cast<std::uint32_t>(length));
  std::vector<std::uint8_t> size;
  putLittle(size, static_cast<std::uint32_t>(kLeadIn));
  return writeAt(file, Spool::kDataStart + kLeadIn - kChunkHeader, header) &&
         writeAt(file, kMarkSizeAt, size);
}

std::optional<WavLayout> layoutOf(const std::string& path) {
  const auto file = DiskSoundFiles().open(path);
  if (!file) return std::nullopt;
  const auto layout = readWavLayout(*file);
  return layout && layout->isSpool ? layout : std::nullopt;
}

}  // namespace

TakeSound mendFoundSpool(const std::string& path, const RecordBuffer& records) {
  const TakeSound silence{TakeSound::Kind::Spool, path, 0, 0};
  auto layout = layoutOf(path);
  if (!layout) return silence;
  const FileDescriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
  if (layout->dataOffset == Spool::kDataStart) {
    const std::uint64_t kept = layout->dataSize - std::min(layout->dataSize, kLeadIn);
    if (!file.isOpen() || !cutLeadIn(file.number(), kept)) return silence;
    layout->dataOffset += kLeadIn;
    layout->dataSize = kept;
  }
  const std::uint64_t wanted = paddedSoundLength(records, layout->dataSize);
  const bool longer = file.isOpen() &&
                      endAt(file.number(), layout->dataOffset + layout->dataSize) &&
                      endAt(file.number(), layout->dataOffset + wanted);
  return {TakeSound::Kind::Spool, path, layout->dataOffset, longer ? wanted : layout->dataSize};
}

}  // namespace qv3
