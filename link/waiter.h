#pragma once

namespace qv3 {

/// One tick of `TDelay`, in seconds.
inline constexpr double kTickSeconds = 0.054;

/// Waits during which events go on, so that a port receives and the window lives. Both calls return
/// true when the time is over, and false, at once, when the wait was given up because the program
/// is closing.
class Waiter {
 public:
  virtual ~Waiter() = default;

  [[nodiscard]] virtual bool TDelay(int ticks) = 0;
  [[nodiscard]] virtual bool wait(double seconds) = 0;
};

}  // namespace qv3
