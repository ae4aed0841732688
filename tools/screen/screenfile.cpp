#include "tools/screen/screenfile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qv3 {

namespace {

/// The file in memory, followed as it changes; empty if it cannot be.
std::span<const std::uint8_t> mapFile(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return {};
  struct stat status {};
  void* memory = MAP_FAILED;
  if (fstat(file, &status) == 0 && status.st_size > 0) {
    memory =
        mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_READ, MAP_SHARED, file, 0);
  }
  close(file);
  if (memory == MAP_FAILED) return {};
  return {static_cast<const std::uint8_t*>(memory), static_cast<std::size_t>(status.st_size)};
}

void unmap(std::span<const std::uint8_t> file) {
  munmap(const_cast<std::uint8_t*>(file.data()), file.size());
}

}  // namespace

std::unique_ptr<ScreenFile> ScreenFile::open(const std::string& path, std::string& error) {
  const std::span<const std::uint8_t> file = mapFile(path);
  if (file.empty()) {
    error = "cannot read " + path;
    return nullptr;
  }
  const std::optional<ScreenLayout> layout = readScreenLayout(file);
  if (!layout) {
    unmap(file);
    error = path + " is no picture of a virtual display with 24 bits of colour";
    return nullptr;
  }
  return std::unique_ptr<ScreenFile>(new ScreenFile(file, *layout));
}

ScreenFile::~ScreenFile() {
  unmap(m_file);
}

std::span<const std::uint8_t> ScreenFile::rows(int first, int count) const {
  return m_file.subspan(m_layout.offset + m_layout.stride * static_cast<std::size_t>(first),
                        m_layout.stride * static_cast<std::size_t>(count));
}

}  // namespace qv3
