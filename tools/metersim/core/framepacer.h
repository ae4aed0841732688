#pragma once

#include <cstdint>

#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {

/// Tells when frames are due: 50 a second of a clock that may differ from ours by so many parts in
/// a million. Each due time is the exact sum of all periods before it, so that nothing drifts.
class FramePacer {
 public:
  explicit FramePacer(int ratePpm = 0);

  /// The first frame is due one period after `now`.
  void start(Nanos now);
  void stop() { m_due = kNever; }
  bool running() const { return m_due != kNever; }

  /// When the next frame is due; kNever while stopped.
  Nanos due() const { return m_due; }

  /// How many frames have come due since the last call; the next one lies after `now`.
  int take(Nanos now);

 private:
  void step();

  std::int64_t m_divisor;    ///< frames take kUnits / m_divisor nanoseconds
  std::int64_t m_remainder;  ///< of the due time, in parts of m_divisor
  Nanos m_due = kNever;
};

}  // namespace qv3::metersim
