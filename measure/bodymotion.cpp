#include "measure/bodymotion.h"

#include <cstdlib>

namespace qv3 {
namespace {

constexpr float kDay = 86400.0F;

}  // namespace

void BodyMotionDetector::restart(std::int32_t reading) {
  m_newest = reading;
  m_middle = reading;
}

bool BodyMotionDetector::push(std::int32_t reading, int threshold) {
  const std::int32_t oldest = m_middle;
  m_middle = m_newest;
  m_newest = reading;
  return std::abs(m_newest - 2 * m_middle + oldest) > threshold;
}

bool BodyMotionDetector::holdOver(float now, float hold) const {
  const float triggered = now < m_triggered ? m_triggered - kDay : m_triggered;
  return triggered + hold < now;
}

}  // namespace qv3
