#include "measure/sensitivity.h"

#include <algorithm>
#include <array>

namespace qv3 {
namespace {

/// A label's value in single precision. Both numbers of the quotient are exact, so the result is
/// the single nearest to the decimal label.
constexpr float gainOf(std::string_view label) {
  int digits = 0;
  int divisor = 1;
  bool decimals = false;
  for (const char c : label) {
    if (c == '.') {
      decimals = true;
      continue;
    }
    digits = digits * 10 + (c - '0');
    if (decimals) divisor *= 10;
  }
  return static_cast<float>(digits) / static_cast<float>(divisor);
}

constexpr SensitivityRow row(int reading, std::string_view label) {
  return {reading, label, gainOf(label)};
}

constexpr std::array<SensitivityRow, kSensitivityRows> kRows = {{
    row(1669, "1.0"),  row(1922, "1.2"),  row(2179, "1.4"),  row(2440, "1.4"),  row(2706, "1.6"),
    row(2976, "1.8"),  row(3252, "2.0"),  row(3532, "2.0"),  row(3819, "2.5"),  row(4111, "2.5"),
    row(4410, "2.5"),  row(4716, "3.0"),  row(5029, "3.0"),  row(5349, "3.5"),  row(5677, "3.5"),
    row(6014, "3.5"),  row(6360, "4.0"),  row(6715, "4.0"),  row(7080, "4.5"),  row(7455, "4.5"),
    row(7842, "5.0"),  row(8240, "5.0"),  row(8650, "5.5"),  row(9074, "5.5"),  row(9511, "6.0"),
    row(9963, "6.0"),  row(10430, "6.5"), row(10914, "6.5"), row(11415, "7.0"), row(11935, "7.5"),
    row(12475, "7.5"), row(13035, "8.0"), row(13618, "8.5"), row(14225, "8.5"), row(14857, "9.0"),
    row(15516, "9.5"), row(16204, "10"),  row(16924, "10"),  row(17677, "11"),  row(18466, "11"),
    row(19294, "12"),  row(20164, "12"),  row(21079, "13"),  row(22043, "13"),  row(23061, "14"),
    row(24136, "15"),  row(25275, "15"),  row(26482, "16"),  row(27766, "17"),  row(29132, "18"),
    row(30590, "19"),  row(32150, "20"),  row(33822, "20"),  row(35619, "22"),  row(37556, "22"),
    row(39651, "24"),  row(41924, "26"),  row(44398, "28"),  row(47101, "28"),  row(50068, "30"),
    row(53340, "33"),  row(56965, "35"),  row(61004, "37"),  row(65535, "40"),
}};

}  // namespace

int clampKnob(int knobPosition) {
  return std::clamp(knobPosition, 0, kSensitivityRows - 1);
}

const SensitivityRow& sensitivityRow(int knobPosition) {
  return kRows[static_cast<std::size_t>(clampKnob(knobPosition))];
}

int Go_Up(int knobPosition) {
  int position = clampKnob(knobPosition);
  const std::string_view label = sensitivityRow(position).label;
  while (position < kSensitivityRows - 1 && sensitivityRow(position).label == label) ++position;
  return position;
}

int Go_Down(int knobPosition) {
  int position = clampKnob(knobPosition);
  const std::string_view label = sensitivityRow(position).label;
  while (position > 0 && sensitivityRow(position).label == label) --position;
  return position;
}

}  // namespace qv3
