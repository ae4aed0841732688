#include "settings/disktextstore.h"

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

namespace qv3 {

namespace fs = std::filesystem;

namespace {

fs::path fromUtf8(const std::string& path) {
  return fs::path(std::u8string(path.begin(), path.end()));
}

StoreResult failure(int code) {
  const int known = code != 0 ? code : EIO;
  return {std::generic_category().message(known)};
}

/// The file that a chain of links ends at, so that the links survive the rename.
fs::path linkTarget(const fs::path& path) {
  std::error_code error;
  if (!fs::is_symlink(path, error)) return path;
  const fs::path target = fs::canonical(path, error);
  return error ? path : target;
}

/// Two instances of the program may end at the same moment; each needs a name of its own.
fs::path temporaryBeside(const fs::path& target) {
  std::random_device random;
  return target.parent_path() / ("qv3-" + std::to_string(random()) + ".tmp");
}

int writeNew(const fs::path& path, const std::string& contents) {
  errno = 0;
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  out.close();
  return out ? 0 : (errno != 0 ? errno : EIO);
}

bool isWritable(fs::perms permissions) {
  constexpr fs::perms kWrite =
      fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
  return (permissions & kWrite) != fs::perms::none;
}

}  // namespace

bool DiskTextStore::exists(const std::string& path) const {
  std::error_code error;
  const fs::file_status status = fs::status(fromUtf8(path), error);
  return fs::exists(status) && !fs::is_directory(status);
}

std::optional<std::string> DiskTextStore::read(const std::string& path) const {
  std::error_code error;
  // Anything else, a pipe for one, could hold the reader for ever.
  if (!fs::is_regular_file(fromUtf8(path), error)) return std::nullopt;
  std::ifstream in(fromUtf8(path), std::ios::binary);
  if (!in) return std::nullopt;
  std::string contents;
  std::array<char, 4096> block;
  do {
    in.read(block.data(), block.size());
    contents.append(block.data(), static_cast<std::size_t>(in.gcount()));
  } while (in);
  if (in.bad()) return std::nullopt;
  return contents;
}

StoreResult DiskTextStore::replace(const std::string& path, const std::string& contents) {
  const fs::path target = linkTarget(fromUtf8(path));
  std::error_code error;
  const fs::file_status old = fs::status(target, error);
  if (fs::is_directory(old)) return failure(EISDIR);
  if (fs::exists(old) && !isWritable(old.permissions())) return failure(EACCES);

  const fs::path temporary = temporaryBeside(target);
  const int code = writeNew(temporary, contents);
  error.clear();
  if (code == 0 && fs::exists(old)) fs::permissions(temporary, old.permissions(), error);
  if (code == 0 && !error) fs::rename(temporary, target, error);
  if (code == 0 && !error) return {};

  std::error_code ignored;
  fs::remove(temporary, ignored);
  return code != 0 ? failure(code) : StoreResult{error.message()};
}

}  // namespace qv3
