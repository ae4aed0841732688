#include "tools/metersim/core/backlog.h"

namespace qv3::metersim {

void Backlog::wrote(std::size_t characters, Nanos now) {
  m_written.push_back({now, characters});
  m_fresh += characters;
}

std::size_t Backlog::stale(std::size_t waiting, Nanos now) {
  while (!m_written.empty() && now - m_written.front().at > m_oldest) {
    m_fresh -= m_written.front().characters;
    m_written.pop_front();
  }
  return waiting > m_fresh ? waiting - m_fresh : 0;
}

void Backlog::clear() {
  m_written.clear();
  m_fresh = 0;
}

}  // namespace qv3::metersim
