#include "tools/metersim/framelog.h"

#include "tools/metersim/core/text.h"
#include "tools/metersim/errortext.h"

namespace qv3::metersim {

std::string FrameLog::open(const std::string& path) {
  m_file.open(path, std::ios::binary | std::ios::trunc);
  return m_file.is_open() ? std::string() : errnoText(path);
}

bool FrameLog::write(Nanos sent, std::string_view frame) {
  if (!m_file.is_open()) return true;
  if (frame.ends_with('\r')) frame.remove_suffix(1);
  m_file << sent.count() << ' ' << escaped(frame) << std::endl;
  return m_file.good();
}

}  // namespace qv3::metersim
