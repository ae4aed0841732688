#pragma once

#include <deque>
#include <optional>

#include "recording/sound/disciplinedclock.h"

namespace qv3 {

/// What a sound server tells of a stream, smoothed. Servers report their latency anew every now and
/// then, each report some milliseconds wrong, and what is told between two reports goes on from the
/// last one. After a stall the reports agree on another place; they are believed when they have
/// done so for a while.
class StreamOffset {
 public:
  /// `stream`: seconds of the stream that were heard by now.
  void observe(SoundTime now, double stream);

  /// Seconds of the stream heard by now; nothing before the first report.
  std::optional<double> heard(SoundTime now) const;

 private:
  void add(double offset);

  std::deque<double> m_reports;  ///< stream time minus steady time, of the latest reports
  double m_mean = 0;
  std::optional<SoundTime> m_awaySince;
};

}  // namespace qv3
