#pragma once

#include <unistd.h>

#include <stdexcept>

namespace qv3::test {

/// While it lives the test has no more rights than any user, though the administrator runs it.
class Unprivileged {
 public:
  Unprivileged() {
    constexpr uid_t kNobody = 65534;
    if (m_user != 0) return;
    if (setegid(kNobody) != 0 || seteuid(kNobody) != 0)
      throw std::runtime_error("cannot be nobody");
  }
  ~Unprivileged() {
    if (m_user != 0) return;
    if (seteuid(m_user) != 0 || setegid(m_group) != 0) _exit(1);
  }
  Unprivileged(const Unprivileged&) = delete;
  Unprivileged& operator=(const Unprivileged&) = delete;

 private:
  uid_t m_user = geteuid();
  gid_t m_group = getegid();
};

}  // namespace qv3::test
