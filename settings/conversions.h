#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv3 {

// Text to value. A number is: spaces around, an optional sign, digits with commas anywhere between
// them, decimals, an exponent (E or e); the point is always ".". Anything else, and what does not
// fit the type, is no value. What is too small for the type is 0. No locale has a say.

std::optional<double> toDouble(std::string_view text);

/// The single nearest to the decimal text, rounded once.
std::optional<float> toSingle(std::string_view text);

// Whole numbers: halves go to the even neighbour, and the result has to fit.
std::optional<std::int32_t> toLong(std::string_view text);
std::optional<std::int16_t> toInteger(std::string_view text);
std::optional<std::uint8_t> toByte(std::string_view text);

/// True or False in any case, or a number, of which all but 0 are true.
std::optional<bool> toBoolean(std::string_view text);

// Value to text.

/// "True" or "False".
std::string fromBoolean(bool value);

/// Decimal digits without grouping.
std::string fromLong(std::int32_t value);

/// A number without exponent, in the fewest digits that read back to the same double, with ".".
std::string fromDouble(double value);

}  // namespace qv3
