#include "measure/needle.h"

#include "measure/numbers.h"
#include "measure/sensitivity.h"

namespace qv3 {
namespace {

constexpr std::int32_t kSetMark = -2503;   // arc dials: 13.75 degrees left of straight up
constexpr std::int32_t kOffScale = 10000;  // traditional dial: the off-scale timers run
constexpr std::int32_t kStop = 10500;      // traditional dial: where the needle stops
constexpr std::int32_t kReRange = 8000;    // continuous dial: the needle jumps back
constexpr double kFromAbove = -3497.0;     // lands the needle at -6000
constexpr double kFromBelow = 8503.0;      // lands the needle at +6000

std::int32_t arcPosition(const MeterState& state, double gain) {
  return roundHalfEven(gain * (state.SetPoint - state.NeedleValue) + kSetMark);
}

OffScale stopAtScaleEnds(std::int32_t& position) {
  if (position > kOffScale) {
    position = kStop;
    return OffScale::Above;
  }
  if (position < -kOffScale) {
    position = -kStop;
    return OffScale::Below;
  }
  return OffScale::Within;
}

void reRange(MeterState& state, double gain) {
  double from = 0;
  if (state.NeedlePosition > kReRange) {
    from = kFromAbove;
  } else if (state.NeedlePosition < -kReRange) {
    from = kFromBelow;
  } else {
    return;
  }
  state.SetPoint = roundHalfEven(from / gain + state.NeedleValue);
  state.NeedlePosition = arcPosition(state, gain);
}

/// Into -32768..32767: the needle goes round the dial rather than stopping.
std::int32_t wrap(std::int32_t position) {
  return static_cast<std::int16_t>(static_cast<std::uint16_t>(position));
}

NeedleOutcome carryOutSet(MeterState& state, std::int32_t mark, OffScale offScale) {
  if (!state.SetRequest) return {false, offScale};
  state.SetRequest = false;
  state.SetPoint = state.NeedleValue;
  state.NeedlePosition = mark;
  return {true, offScale};
}

}  // namespace

NeedleOutcome NeedleCalculator::Calc_Needle(MeterState& state, const MeasureSettings& settings) {
  const double gain = sensitivityRow(settings.KnobPosition).gain;
  NeedleOutcome outcome;
  if (state.Restart) {
    if (isArcDial(settings.DialType)) state.NeedlePosition = kSetMark;
    if (isRoundDial(settings.DialType)) state.NeedlePosition = 0;
    state.SetPoint = state.NeedleValue;
  } else if (isArcDial(settings.DialType)) {
    outcome = arcDial(state, settings, gain);
  } else if (isRoundDial(settings.DialType)) {
    outcome = roundDial(state, settings, gain);
  }
  m_knobRow = clampKnob(settings.KnobPosition);
  m_position = state.NeedlePosition;
  return outcome;
}

NeedleOutcome NeedleCalculator::arcDial(MeterState& state, const MeasureSettings& settings,
                                        double gain) {
  const bool turned = clampKnob(settings.KnobPosition) != m_knobRow;
  if (turned || state.Frozen) {
    // In double: the position may stand anywhere after a change of dial.
    const double fromMark = static_cast<double>(m_position) - kSetMark;
    state.SetPoint = roundHalfEven(fromMark / gain + state.NeedleValue);
  }
  if (state.Frozen) {
    state.NeedlePosition = m_position;
    return {};
  }
  state.NeedlePosition = arcPosition(state, gain);
  OffScale offScale = OffScale::Unchanged;
  if (settings.DialType == 1) {
    offScale = stopAtScaleEnds(state.NeedlePosition);
  } else {
    reRange(state, gain);
  }
  return carryOutSet(state, kSetMark, offScale);
}

NeedleOutcome NeedleCalculator::roundDial(MeterState& state, const MeasureSettings& settings,
                                          double gain) {
  const bool turned = clampKnob(settings.KnobPosition) != m_knobRow;
  if (turned || state.Frozen) {
    state.SetPoint = roundHalfEven(m_position / gain + state.NeedleValue);
  }
  if (state.Frozen) {
    state.NeedlePosition = m_position;
  } else {
    state.NeedlePosition = wrap(roundHalfEven(gain * (state.SetPoint - state.NeedleValue)));
  }
  return carryOutSet(state, 0, OffScale::Unchanged);
}

}  // namespace qv3
