#pragma once

#include <chrono>
#include <mutex>

namespace qv3 {

/// Time as the sound device is told it: a steady clock, whose zero is of no account.
using SoundTime = std::chrono::microseconds;

/// The seconds of a sound: a steady clock that always runs, at very nearly the rate of real time,
/// and is drawn softly to what is heard. It never jumps and never falls. Without observations it
/// runs on alone. May be called from any thread.
class DisciplinedClock {
 public:
  /// Stands at `seconds` when `start` is. `drift` is all that has to be corrected if the sound was
  /// put in its place exactly; `offset` draws in the first seconds faster.
  enum class Corrects { Offset, Drift };
  DisciplinedClock(SoundTime start, double seconds, Corrects corrects);

  double at(SoundTime now) const;

  /// `error`: seconds by which what is heard is ahead of the clock.
  void observe(SoundTime now, double error);

 private:
  double unlocked(SoundTime now) const;

  mutable std::mutex m_mutex;
  SoundTime m_since;
  double m_seconds;
  Corrects m_corrects;
  double m_slew = 0;  ///< seconds a second, to close the present gap, for a short time
  bool m_observed = false;
  SoundTime m_firstObserved{0};
};

}  // namespace qv3
