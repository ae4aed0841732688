#pragma once

#include <functional>

#include "link/waiter.h"

namespace qv3 {

/// Waits while events go on; the one place that runs the event loop from within. It sleeps until an
/// event or its end comes. Only what is refused while a wait runs may happen inside one: waits do
/// not nest.
class PumpedWait final : public Waiter {
 public:
  /// `timeOfDay` tells the seconds since local midnight.
  explicit PumpedWait(std::function<double()> timeOfDay);

  bool TDelay(int ticks) override;
  bool wait(double seconds) override;

  /// Ends the wait under way, at its next turn. To be called from an event.
  void giveUp() { m_givenUp = true; }

 private:
  std::function<double()> m_timeOfDay;
  bool m_givenUp = false;
};

}  // namespace qv3
