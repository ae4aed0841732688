#pragma once

#include <string>
#include <vector>

#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {

/// What goes wrong between the meter and the line. Frames pass through it one by one.
class LineFaults {
 public:
  /// The next `count` frames lose their CR, so that each runs into its successor.
  void dropReturns(int count) { m_returnsToDrop = count; }

  /// The next `count` frames are held back and then go out all at once.
  void holdBack(int count) { m_toHold = count; }

  /// Nothing gets through until then; kNever: until resume().
  void stall(Nanos until) { m_stalledUntil = until; }
  void resume() { m_stalledUntil = Nanos::min(); }
  bool stalled(Nanos now) const { return now < m_stalledUntil; }

  /// What of the frame and those before it goes out now, in order.
  std::vector<std::string> pass(std::string frame, Nanos now);

  /// Forgets the frames held back; what is still to go wrong stays.
  void forgetHeld() { m_held.clear(); }

  /// Nothing goes wrong any more.
  void clear() { *this = LineFaults(); }

 private:
  int m_returnsToDrop = 0;
  int m_toHold = 0;
  Nanos m_stalledUntil = Nanos::min();
  std::vector<std::string> m_held;
};

}  // namespace qv3::metersim
