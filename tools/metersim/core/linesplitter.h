#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qv3::metersim {

/// Makes lines of characters that arrive in pieces of any size. A line over the limit comes out cut
/// to one character more than it, so that the receiver sees that it was too long.
class LineSplitter {
 public:
  LineSplitter(char end, std::size_t limit) : m_end(end), m_limit(limit) {}

  /// The lines that are complete now, without their end.
  std::vector<std::string> feed(std::string_view characters);
  void clear() { m_line.clear(); }

 private:
  char m_end;
  std::size_t m_limit;
  std::string m_line;
};

}  // namespace qv3::metersim
