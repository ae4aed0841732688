#include "recording/sound/disksoundfiles.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <random>
#include <system_error>
#include <vector>

namespace qv3 {

namespace fs = std::filesystem;

namespace {

fs::path fromUtf8(const std::string& path) {
  return fs::path(std::u8string(path.begin(), path.end()));
}

std::string toUtf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

class DiskByteFile final : public ByteFile {
 public:
  bool open(const std::string& path, std::ios::openmode mode) {
    m_path = fromUtf8(path);
    m_file.pubsetbuf(nullptr, 0);
    return m_file.open(m_path, mode | std::ios::binary) != nullptr;
  }

  std::uint64_t size() override {
    const std::lock_guard lock(m_mutex);
    return end();
  }

  std::size_t readAt(std::uint64_t offset, std::span<std::uint8_t> to) override {
    const std::lock_guard lock(m_mutex);
    if (!goTo(offset)) return 0;
    std::vector<char> bytes(to.size());
    const std::streamsize got = m_file.sgetn(bytes.data(), static_cast<std::streamsize>(to.size()));
    const auto count = static_cast<std::size_t>(std::max<std::streamsize>(got, 0));
    std::transform(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count), to.begin(),
                   [](char byte) { return static_cast<std::uint8_t>(byte); });
    return count;
  }

  bool writeAt(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
    const std::lock_guard lock(m_mutex);
    const std::vector<char> characters(bytes.begin(), bytes.end());
    const auto count = static_cast<std::streamsize>(characters.size());
    std::error_code unknown;
    const bool there =
        fs::exists(m_path, unknown);  // else what is written is lost with the program
    errno = there ? 0 : ENOENT;
    const bool written = there && goTo(offset) && m_file.sputn(characters.data(), count) == count &&
                         m_file.pubsync() == 0;
    if (!written) m_error = errno;
    return written;
  }

  bool truncate(std::uint64_t size) override {
    const std::lock_guard lock(m_mutex);
    std::error_code error;
    fs::resize_file(m_path, size, error);
    if (error) m_error = error.value();
    return !error;
  }

  std::string error() override {
    const std::lock_guard lock(m_mutex);
    return std::generic_category().message(m_error != 0 ? m_error : EIO);
  }

 private:
  bool goTo(std::uint64_t offset) {
    return m_file.pubseekoff(static_cast<std::streamoff>(offset), std::ios::beg) !=
           std::filebuf::pos_type(std::filebuf::off_type(-1));
  }

  std::uint64_t end() {
    const auto place = static_cast<std::streamoff>(m_file.pubseekoff(0, std::ios::end));
    return place < 0 ? 0 : static_cast<std::uint64_t>(place);
  }

  std::mutex m_mutex;
  fs::path m_path;
  std::filebuf m_file;
  int m_error = 0;
};

}  // namespace

PathKind DiskSoundFiles::kind(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(fromUtf8(path), error);
  if (!fs::exists(status)) return PathKind::Missing;
  if (fs::is_directory(status)) return PathKind::Folder;
  return fs::is_regular_file(status) ? PathKind::File : PathKind::Other;
}

bool DiskSoundFiles::same(const std::string& one, const std::string& other) {
  std::error_code error;
  const fs::path first = fs::weakly_canonical(fromUtf8(one), error);
  if (error) return false;
  const fs::path second = fs::weakly_canonical(fromUtf8(other), error);
  return !error && first == second;
}

std::unique_ptr<ByteFile> DiskSoundFiles::open(const std::string& path) {
  auto file = std::make_unique<DiskByteFile>();
  if (!file->open(path, std::ios::in)) return nullptr;
  return file;
}

std::unique_ptr<ByteFile> DiskSoundFiles::create(const std::string& path) {
  if (path.empty() || kind(path) != PathKind::Missing) return nullptr;
  auto file = std::make_unique<DiskByteFile>();
  if (!file->open(path, std::ios::in | std::ios::out | std::ios::trunc)) return nullptr;
  return file;
}

std::string DiskSoundFiles::nameBeside(const std::string& path) {
  std::random_device random;
  const fs::path folder = fromUtf8(path).parent_path();
  return toUtf8(folder / ("qv3-" + std::to_string(random()) + ".tmp"));
}

bool DiskSoundFiles::rename(const std::string& from, const std::string& to) {
  std::error_code error;
  fs::rename(fromUtf8(from), fromUtf8(to), error);
  return !error;
}

void DiskSoundFiles::remove(const std::string& path) {
  std::error_code ignored;
  fs::remove(fromUtf8(path), ignored);
}

}  // namespace qv3
