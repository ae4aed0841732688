#pragma once

#include <chrono>

#include "recording/sound/disciplinedclock.h"

namespace qv3 {

inline SoundTime steadyNow() {
  return std::chrono::duration_cast<SoundTime>(std::chrono::steady_clock::now().time_since_epoch());
}

}  // namespace qv3
