#pragma once

#include <array>
#include <chrono>
#include <optional>

#include "instrument/now.h"

namespace qv3 {

/// The one-shot timers of the instrument.
enum class Timer {
  tmrLED,          ///< the lamp goes out after a SET
  tmrRise,         ///< automatic SET, needle off the left end
  tmrFall,         ///< automatic SET, needle off the right end
  tmrBdMouseDown,  ///< the BD read-out is held
  message          ///< "Freeze ON" and its like leave the mode line
};
constexpr std::size_t kTimers = 5;

/// When each timer is due. Holds no clock: whoever knows the time asks what is due.
class Deadlines {
 public:
  /// (Re)starts the timer.
  void start(Timer timer, Instant now);
  void startIfStopped(Timer timer, Instant now);
  void stop(Timer timer) { at(timer).reset(); }
  bool running(Timer timer) const { return m_due[static_cast<std::size_t>(timer)].has_value(); }

  /// The earliest deadline.
  std::optional<Instant> next() const;

  /// Stops and returns the earliest timer that is due by `now`.
  struct Due {
    Timer timer;
    Instant at;
  };
  std::optional<Due> takeDue(Instant now);

 private:
  std::optional<Instant>& at(Timer timer) { return m_due[static_cast<std::size_t>(timer)]; }

  std::array<std::optional<Instant>, kTimers> m_due;
};

}  // namespace qv3
