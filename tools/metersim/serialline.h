#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tools/metersim/core/backlog.h"
#include "tools/metersim/pty.h"

namespace qv3::metersim {

/// The line to the host: a terminal that can go and come back, and the symbolic link by which the
/// host finds it.
class SerialLine {
 public:
  /// `link` may be empty.
  SerialLine(std::string link, Nanos backlog) : m_link(std::move(link)), m_backlog(backlog) {}
  SerialLine(const SerialLine&) = delete;
  SerialLine& operator=(const SerialLine&) = delete;
  ~SerialLine() { hangUp(); }

  /// The error's text, or nothing.
  std::string open();
  void hangUp();
  bool isOpen() const { return m_pty != nullptr; }
  const std::string& path() const { return m_pty->path(); }

  /// -1 while hung up.
  int fd() const { return m_pty ? m_pty->fd() : -1; }
  std::string read() { return m_pty->read(); }
  bool write(std::string_view characters, Nanos now);

  /// Throws away what nobody has read for too long, and lets every program in again.
  void tidy(Nanos now);

  /// The host has all that was sent. The terminal hands on what it was given a moment later, so
  /// one look is not enough right after writing.
  bool drained() const { return !m_pty || m_pty->unread() == 0; }

 private:
  std::string makeLink() const;
  void removeLink() const;

  std::string m_link;
  Backlog m_backlog;
  std::unique_ptr<Pty> m_pty;
};

}  // namespace qv3::metersim
