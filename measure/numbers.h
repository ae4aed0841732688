#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qv3 {

/// Nearest whole number, halves to even; nothing if that is no 32-bit signed integer.
std::optional<std::int32_t> roundToLong(double value);

/// The same, held at the nearest limit where it does not fit (NaN gives 0).
std::int32_t roundHalfEven(double value);

/// "0.0#": at least one decimal, at most two, halves away from zero, always a point.
std::string formatBase(double value);

/// "#0.0": exactly one decimal, halves away from zero.
std::string formatTenths(double value);

/// "000": a whole number of at least three digits, halves away from zero (100.5 gives "101").
std::string formatThreeDigits(double value);

}  // namespace qv3
