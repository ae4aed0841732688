#include "tools/metersim/serialline.h"

#include <filesystem>

namespace qv3::metersim {

namespace fs = std::filesystem;

std::string SerialLine::open() {
  std::string error;
  m_pty = Pty::open(error);
  if (!m_pty) return error;
  m_backlog.clear();
  error = makeLink();
  if (!error.empty()) m_pty.reset();
  return error;
}

void SerialLine::hangUp() {
  if (!m_pty) return;
  removeLink();
  m_pty.reset();
}

// A rename, so that the link always leads somewhere. Whatever else stands at the place is not ours.
std::string SerialLine::makeLink() const {
  if (m_link.empty()) return {};
  std::error_code error;
  const fs::file_status there = fs::symlink_status(m_link, error);
  if (fs::exists(there) && !fs::is_symlink(there)) {
    return m_link + " exists and is no symbolic link";
  }
  const std::string fresh = m_link + ".new";
  fs::remove(fresh, error);
  fs::create_symlink(path(), fresh, error);
  if (!error) fs::rename(fresh, m_link, error);
  return error ? m_link + ": " + error.message() : std::string();
}

void SerialLine::removeLink() const {
  std::error_code error;
  if (!m_link.empty() && fs::read_symlink(m_link, error) == path()) fs::remove(m_link, error);
}

bool SerialLine::write(std::string_view characters, Nanos now) {
  if (!m_pty) return false;
  m_backlog.wrote(characters.size(), now);
  return m_pty->write(characters);
}

void SerialLine::tidy(Nanos now) {
  if (!m_pty) return;
  m_pty->clearExclusive();
  const std::size_t stale = m_backlog.stale(m_pty->unread(), now);
  if (stale > 0) m_pty->discard(stale);
}

}  // namespace qv3::metersim
