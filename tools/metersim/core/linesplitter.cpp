#include "tools/metersim/core/linesplitter.h"

namespace qv3::metersim {

std::vector<std::string> LineSplitter::feed(std::string_view characters) {
  std::vector<std::string> lines;
  for (const char c : characters) {
    if (c == m_end) {
      lines.push_back(m_line);
      m_line.clear();
    } else if (m_line.size() <= m_limit) {
      m_line += c;
    }
  }
  return lines;
}

}  // namespace qv3::metersim
