#include "measure/base.h"

#include <algorithm>
#include <limits>

#include "measure/numbers.h"

namespace qv3 {
namespace {

/// Whether the dial type lets a base computation go ahead now.
bool proceeds(const MeterState& state, const MeasureSettings& settings) {
  if (settings.DialType == 1) return settings.NeedleBdEnable || state.SetRequest;
  return settings.DialType == 0 || settings.DialType == 2 || settings.DialType == 3;
}

bool replace(std::string& shown, const std::string& text) {
  if (shown == text) return false;
  shown = text;
  return true;
}

}  // namespace

std::uint8_t baseStep(std::int32_t reading) {
  const std::int32_t half = roundHalfEven(reading / 2.0);
  const std::int32_t scaled = static_cast<std::int32_t>(std::int64_t{half} * 61550 / 32768) + 1170;
  return static_cast<std::uint8_t>(scaled / 256);
}

std::string baseText(std::uint8_t step) {
  return formatBase((step / 2 + 8) / 20.0);
}

std::string bdText(std::int16_t tenths) {
  const double units = tenths / 10.0;
  return tenths >= 1000 ? formatThreeDigits(units) : formatTenths(units);
}

BaseCalculator::BaseCalculator() {
  for (std::size_t half = 0; half < m_texts.size(); ++half) {
    m_texts[half] = baseText(static_cast<std::uint8_t>(half * 2));
  }
}

ReadoutChange BaseCalculator::Calc_Base(MeterState& state, const MeasureSettings& settings) {
  ReadoutChange change;
  if (!proceeds(state, settings)) return change;
  const std::uint8_t step = baseStep(state.Reading);
  int drop = state.BasePosition - step;
  state.BasePosition = step;
  if (settings.DialType == 1) {
    if (state.BodyMotion || !state.BdRunning) drop = 0;
  } else if (state.BodyMotion) {
    return change;  // the drop made while the body moves is lost on purpose
  }
  if (drop >= 1 && state.BdRunning) change.bd = addDrop(state, drop);
  state.BdTenths = static_cast<std::int16_t>(state.BdAccum / 4);
  change.base = replace(state.BaseText, m_texts[step / 2]);
  m_recorded = {step, state.BdTenths};
  return change;
}

void BaseCalculator::zeroBd(MeterState& state) {
  state.BdAccum = 0;
  state.BdTenths = 0;
  state.BdText = "0.0";
}

bool BaseCalculator::addDrop(MeterState& state, int drop) {
  constexpr int kLimit = std::numeric_limits<std::int16_t>::max();
  state.BdAccum = static_cast<std::int16_t>(std::min(state.BdAccum + drop, kLimit));
  return replace(state.BdText, bdText(static_cast<std::int16_t>(state.BdAccum / 4)));
}

}  // namespace qv3
