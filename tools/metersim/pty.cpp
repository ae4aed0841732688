#include "tools/metersim/pty.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "tools/metersim/errortext.h"

namespace qv3::metersim {
namespace {

bool makeRaw(int fd) {
  termios settings{};
  if (tcgetattr(fd, &settings) != 0) return false;
  cfmakeraw(&settings);
  cfsetispeed(&settings, B9600);
  cfsetospeed(&settings, B9600);
  return tcsetattr(fd, TCSANOW, &settings) == 0;
}

}  // namespace

std::unique_ptr<Pty> Pty::open(std::string& error) {
  Fd nearEnd(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (!nearEnd.valid() || grantpt(nearEnd.get()) != 0 || unlockpt(nearEnd.get()) != 0) {
    error = errnoText("no pseudo terminal");
    return nullptr;
  }
  const char* name = ptsname(nearEnd.get());
  std::string path = name != nullptr ? name : "";
  Fd farEnd(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  if (!farEnd.valid() || !makeRaw(farEnd.get())) {
    error = errnoText(path);
    return nullptr;
  }
  return std::unique_ptr<Pty>(new Pty(std::move(nearEnd), std::move(farEnd), std::move(path)));
}

std::string Pty::read() {
  std::array<char, 4096> buffer;
  const ssize_t count = ::read(m_near.get(), buffer.data(), buffer.size());
  return count > 0 ? std::string(buffer.data(), static_cast<std::size_t>(count)) : std::string();
}

bool Pty::write(std::string_view characters) {
  const ssize_t count = ::write(m_near.get(), characters.data(), characters.size());
  return count == static_cast<ssize_t>(characters.size());
}

std::size_t Pty::unread() const {
  int count = 0;
  if (ioctl(m_far.get(), FIONREAD, &count) != 0) return 0;
  return static_cast<std::size_t>(std::max(count, 0));
}

void Pty::discard(std::size_t count) {
  std::array<char, 4096> buffer;
  while (count > 0) {
    const ssize_t taken = ::read(m_far.get(), buffer.data(), std::min(count, buffer.size()));
    if (taken <= 0) return;
    count -= static_cast<std::size_t>(taken);
  }
}

void Pty::clearExclusive() {
  ioctl(m_far.get(), TIOCNXCL);
}

}  // namespace qv3::metersim
