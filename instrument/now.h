#pragma once

#include <chrono>

namespace qv3 {

/// A point on the steady clock that deadlines are kept in.
using Instant = std::chrono::microseconds;

/// The time as everything in the instrument is told it.
struct Now {
  Instant steady{0};
  double timeOfDay = 0;  ///< seconds since local midnight
};

}  // namespace qv3
