#include "link/tickwait.h"

#include <algorithm>

namespace qv3 {
namespace {

constexpr double kSecondsOfDay = 86400.0;

}  // namespace

TickWait::TickWait(double timeOfDay, double seconds)
    : m_start(timeOfDay), m_told(timeOfDay), m_end(timeOfDay + seconds) {}

bool TickWait::over(double timeOfDay) {
  if (timeOfDay < m_start) {
    m_end -= kSecondsOfDay;
    m_start = 0;
  }
  m_told = timeOfDay;
  return timeOfDay >= m_end;
}

double TickWait::remaining() const {
  return std::max(0.0, m_end - m_told);
}

}  // namespace qv3
