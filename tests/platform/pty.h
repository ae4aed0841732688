#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <string_view>

#include "link/byteport.h"
#include "tests/platform/eventloop.h"

namespace qv3::test {

/// A pseudo terminal: what stands at the other end of the line.
class Pty {
 public:
  Pty() : m_near(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    if (m_near < 0 || grantpt(m_near) != 0 || unlockpt(m_near) != 0) {
      throw std::runtime_error("the system gives no pseudo terminal");
    }
    m_path = ptsname(m_near);
  }
  ~Pty() { hangUp(); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  const std::string& path() const { return m_path; }
  int fd() const { return m_near; }

  /// How many characters the line took.
  std::size_t write(std::string_view characters) const {
    const auto written = ::write(m_near, characters.data(), characters.size());
    return written < 0 ? 0 : static_cast<std::size_t>(written);
  }

  /// What has come since the last call.
  std::string read() const {
    std::string all;
    char part[4096];
    for (auto n = ::read(m_near, part, sizeof part); n > 0; n = ::read(m_near, part, sizeof part)) {
      all.append(part, static_cast<std::size_t>(n));
    }
    return all;
  }

  void hangUp() {
    if (m_near >= 0) ::close(m_near);
    m_near = -1;
  }

 private:
  int m_near;
  std::string m_path;
};

/// Opens the port; empty if it is open. The system may give out the number of a pseudo terminal
/// whose lock file another process is just about to remove.
inline std::string reasonAgainst(BytePort& port, const Pty& pty) {
  PortResult result;
  eventually([&] { return (result = port.openConfigured(pty.path())).fault != PortFault::Busy; });
  return result.reason;
}

}  // namespace qv3::test
