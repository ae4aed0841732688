#pragma once

#include <ctime>

#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {

/// The clock that all programs of this machine share; latencies are differences of its times.
inline Nanos monotonicNow() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return std::chrono::seconds(time.tv_sec) + Nanos(time.tv_nsec);
}

}  // namespace qv3::metersim
