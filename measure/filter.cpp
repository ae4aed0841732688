#include "measure/filter.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "measure/numbers.h"

namespace qv3 {

void Filter::refill(std::int32_t reading) {
  m_history.fill(reading);
}

void Filter::push(std::int32_t reading) {
  std::copy_backward(m_history.begin(), m_history.end() - 1, m_history.end());
  m_history.front() = reading;
}

std::int32_t Filter::smoothed() {
  m_length = std::clamp(m_length, kShortest, kLongest);
  const double sum = std::accumulate(m_history.begin(), m_history.begin() + m_length, 0);
  const std::int32_t value = roundHalfEven(sum / m_length);
  const std::int32_t change = std::abs(m_history.front() - m_history.back());
  if (change > kRunning) --m_length;
  if (change < kRunning) ++m_length;
  return value;
}

}  // namespace qv3
