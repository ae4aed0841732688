#pragma once

#include "recording/sound/disciplinedclock.h"

namespace qv3 {

/// When a stream that could not be opened, or was lost, is tried again. A sound server that was
/// restarted is back within seconds.
class Reopening {
 public:
  bool isDue(SoundTime now) const { return !m_tried || now - m_last >= kPause; }
  void tried(SoundTime now) {
    m_tried = true;
    m_last = now;
  }

 private:
  static constexpr SoundTime kPause{500'000};

  bool m_tried = false;
  SoundTime m_last{0};
};

}  // namespace qv3
