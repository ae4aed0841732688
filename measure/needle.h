#pragma once

#include <cstdint>

#include "measure/meterstate.h"

namespace qv3 {

/// What a needle computation asks of the off-scale timers of the traditional dial.
enum class OffScale { Unchanged, Within, Above, Below };

struct NeedleOutcome {
  bool set = false;  ///< a SET was carried out: lamp in the SET colour, its timer restarted
  OffScale offScale = OffScale::Unchanged;
};

/// Turns the smoothed reading into a needle position relative to the set point.
class NeedleCalculator {
 public:
  /// Reads `NeedleValue`, writes `NeedlePosition` and `SetPoint`, consumes `SetRequest`.
  NeedleOutcome Calc_Needle(MeterState& state, const MeasureSettings& settings);

 private:
  NeedleOutcome arcDial(MeterState& state, const MeasureSettings& settings, double gain);
  NeedleOutcome roundDial(MeterState& state, const MeasureSettings& settings, double gain);

  int m_knobRow = 0;            ///< of the previous computation
  std::int32_t m_position = 0;  ///< of the previous computation
};

}  // namespace qv3
