#pragma once

#include <unistd.h>

#include <utility>

namespace qv3::metersim {

/// Owns an open file.
class Fd {
 public:
  explicit Fd(int fd = -1) : m_fd(fd) {}
  Fd(Fd&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
  Fd& operator=(Fd&& other) noexcept {
    std::swap(m_fd, other.m_fd);
    return *this;
  }
  ~Fd() {
    if (m_fd >= 0) close(m_fd);
  }

  int get() const { return m_fd; }
  bool valid() const { return m_fd >= 0; }

 private:
  int m_fd;
};

}  // namespace qv3::metersim
