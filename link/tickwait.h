#pragma once

namespace qv3 {

/// When a wait that began at some time of day is over. Time is told in seconds since midnight; the
/// wait may pass midnight, and one that sees the clock set back ends.
class TickWait {
 public:
  TickWait(double timeOfDay, double seconds);

  /// To be told the time in the order it passes.
  bool over(double timeOfDay);

  /// Seconds still to go as of the time told last, 0 or more.
  double remaining() const;

 private:
  double m_start;
  double m_told;
  double m_end;
};

}  // namespace qv3
