#pragma once

#include <algorithm>
#include <string_view>

#include "settings/conversions.h"

namespace qv3 {

// Numbers that stored settings stand for. A stored index outside its range is kept as it is and
// acts as the nearest valid one.

/// BM_Threshold_Index 1..3, "Fine", "Medium", "Coarse": the second difference of readings above
/// which there is body motion.
constexpr int bodyMotionThreshold(int index) {
  constexpr int kThresholds[] = {30, 50, 100};
  return kThresholds[std::clamp(index, 1, 3) - 1];
}

/// DataLag_Index 1..5: frames in one receive event above which the display lags.
constexpr int lagLimit(int index) {
  return std::clamp(index, 1, 5);
}

/// What the switch on the meter does.
enum class SwitchMode { NeedleSet = 1, Tag = 2 };

constexpr SwitchMode switchMode(int index) {
  return index <= 1 ? SwitchMode::NeedleSet : SwitchMode::Tag;
}

/// A graph setting kept as text (height, pen width, timescale) where a number is wanted; a text
/// that is none counts as 0.
inline std::int32_t graphNumber(std::string_view text) {
  return toLong(text).value_or(0);
}

}  // namespace qv3
