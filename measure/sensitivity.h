#pragma once

#include <cstdint>
#include <string_view>

namespace qv3 {

constexpr int kSensitivityRows = 64;

/// One detent of the sensitivity knob.
struct SensitivityRow {
  int reading;  ///< rising 16-bit series that goes with the table; nothing computes with it
  std::string_view label;  ///< printed on the knob
  float gain;              ///< the label's value: needle units per unit of reading
};

/// The row for a knob position; a position outside 0..63 gives the nearest row.
const SensitivityRow& sensitivityRow(int knobPosition);

/// 0..63, the nearest row that exists.
int clampKnob(int knobPosition);

/// The next position upwards whose label differs, at most 63. Labels repeat on neighbouring rows,
/// so Go_Down does not retrace it: from row 2 up is row 4, from row 4 down is row 3.
int Go_Up(int knobPosition);
int Go_Down(int knobPosition);

}  // namespace qv3
