#pragma once

#include <functional>

#include "link/waiter.h"

namespace qv3 {

/// The program's waits, as whoever wants to close it sees them.
class Waits final : public Waiter {
 public:
  /// `giveUp` makes the wait of `waiter` that is under way end at once.
  Waits(Waiter& waiter, std::function<void()> giveUp);

  bool TDelay(int ticks) override;
  bool wait(double seconds) override;

  /// Asked from an event: it came in the midst of a wait.
  bool running() const { return m_running; }
  /// Ends the wait under way and every later one.
  void giveUp();
  /// The program is not closing after all.
  void resume() { m_givenUp = false; }

 private:
  Waiter& m_waiter;
  std::function<void()> m_giveUp;
  bool m_running = false;
  bool m_givenUp = false;
};

}  // namespace qv3
