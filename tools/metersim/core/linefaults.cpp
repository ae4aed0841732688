#include "tools/metersim/core/linefaults.h"

#include <utility>

namespace qv3::metersim {

std::vector<std::string> LineFaults::pass(std::string frame, Nanos now) {
  if (stalled(now)) return {};
  if (m_returnsToDrop > 0) {
    --m_returnsToDrop;
    frame.pop_back();
  }
  m_held.push_back(std::move(frame));
  if (m_toHold > 0 && --m_toHold > 0) return {};
  return std::exchange(m_held, {});
}

}  // namespace qv3::metersim
