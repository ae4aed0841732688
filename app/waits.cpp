#include "app/waits.h"

#include <utility>

namespace qv3 {

Waits::Waits(Waiter& waiter, std::function<void()> giveUp)
    : m_waiter(waiter), m_giveUp(std::move(giveUp)) {}

bool Waits::TDelay(int ticks) {
  return wait(ticks * kTickSeconds);
}

bool Waits::wait(double seconds) {
  if (m_givenUp) return false;
  m_running = true;
  const bool waited = m_waiter.wait(seconds);
  m_running = false;
  return waited;
}

void Waits::giveUp() {
  m_givenUp = true;
  m_giveUp();
}

}  // namespace qv3
