#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tools/metersim/fd.h"

namespace qv3::metersim {

/// A pseudo terminal in raw mode whose far end this process holds open too, so that programs there
/// may come and go. Nothing blocks. Destroying it is a hang-up for whoever has the far end open.
class Pty {
 public:
  /// Null, with a text, if the system has none to give.
  static std::unique_ptr<Pty> open(std::string& error);

  /// Of the far end.
  const std::string& path() const { return m_path; }

  /// To wait for what the far end sends.
  int fd() const { return m_near.get(); }

  std::string read();

  /// False if the terminal did not take all of it.
  bool write(std::string_view characters);

  /// Characters written that nobody at the far end has read.
  std::size_t unread() const;

  /// Takes the oldest unread characters away from the far end.
  void discard(std::size_t count);

  /// A program killed while it had the terminal for itself alone leaves it barred for all others.
  void clearExclusive();

 private:
  Pty(Fd nearEnd, Fd farEnd, std::string path)
      : m_near(std::move(nearEnd)), m_far(std::move(farEnd)), m_path(std::move(path)) {}

  Fd m_near;
  Fd m_far;
  std::string m_path;
};

}  // namespace qv3::metersim
