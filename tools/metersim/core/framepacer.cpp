#include "tools/metersim/core/framepacer.h"

namespace qv3::metersim {
namespace {

constexpr std::int64_t kMillion = 1'000'000;
constexpr std::int64_t kUnits = 1'000'000'000 / kFramesPerSecond * kMillion;

}  // namespace

FramePacer::FramePacer(int ratePpm) : m_divisor(kMillion + ratePpm), m_remainder(0) {}

void FramePacer::start(Nanos now) {
  m_due = now;
  m_remainder = 0;
  step();
}

void FramePacer::step() {
  m_due += Nanos(kUnits / m_divisor);
  m_remainder += kUnits % m_divisor;
  if (m_remainder >= m_divisor) {
    m_remainder -= m_divisor;
    m_due += Nanos(1);
  }
}

int FramePacer::take(Nanos now) {
  int count = 0;
  while (running() && m_due <= now) {
    step();
    ++count;
  }
  return count;
}

}  // namespace qv3::metersim
