#include "tools/metersim/controlpipe.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

#include "tools/metersim/errortext.h"

namespace qv3::metersim {

ControlPipe::~ControlPipe() {
  if (!m_made.empty()) unlink(m_made.c_str());
}

std::string ControlPipe::open(const std::string& path) {
  if (mkfifo(path.c_str(), 0600) == 0) {
    m_made = path;
  } else if (errno != EEXIST) {
    return errnoText(path);
  }
  m_reader = Fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!m_reader.valid()) return errnoText(path);
  struct stat info {};
  if (fstat(m_reader.get(), &info) != 0 || !S_ISFIFO(info.st_mode)) {
    return path + " exists and is no named pipe";
  }
  m_writer = Fd(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  return m_writer.valid() ? std::string() : errnoText(path);
}

std::vector<std::string> ControlPipe::read() {
  std::array<char, 4096> buffer;
  const ssize_t count = ::read(m_reader.get(), buffer.data(), buffer.size());
  if (count <= 0) return {};
  return m_lines.feed({buffer.data(), static_cast<std::size_t>(count)});
}

}  // namespace qv3::metersim
