#include "measure/numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace qv3 {
namespace {

/// A number's decimal digits, as a person reads them: 2.15 is "2.15", not the binary value just
/// below it. Rounding on these digits is what makes halves go away from zero.
struct Decimal {
  bool negative = false;
  std::string whole;
  std::string fraction;
};

Decimal toDecimal(double value) {
  std::array<char, 400> text{};  // the longest double takes 309 digits before the point
  const auto end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                 std::chars_format::fixed)
                       .ptr;
  const std::string digits(text.data(), end);
  const auto point = digits.find('.');
  Decimal result{std::signbit(value), digits.substr(0, point), {}};
  if (point != std::string::npos) result.fraction = digits.substr(point + 1);
  return result;
}

void addOne(std::string& digits) {
  for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
    if (*digit != '9') {
      ++*digit;
      return;
    }
    *digit = '0';
  }
  digits.insert(digits.begin(), '1');
}

/// Keeps `decimals` digits of the fraction, halves away from zero.
void roundTo(Decimal& number, std::size_t decimals) {
  const bool up = number.fraction.size() > decimals && number.fraction[decimals] >= '5';
  number.fraction.resize(decimals, '0');
  if (!up) return;
  std::string all = number.whole + number.fraction;
  addOne(all);
  number.whole = all.substr(0, all.size() - decimals);
  number.fraction = all.substr(all.size() - decimals);
}

std::string join(const Decimal& number) {
  const bool zero = (number.whole + number.fraction).find_first_not_of('0') == std::string::npos;
  std::string text = number.negative && !zero ? "-" : "";
  text += number.whole;
  if (!number.fraction.empty()) text += '.' + number.fraction;
  return text;
}

}  // namespace

std::optional<std::int32_t> roundToLong(double value) {
  const double rounded = std::nearbyint(value);
  const bool fits = rounded >= std::numeric_limits<std::int32_t>::min() &&
                    rounded <= std::numeric_limits<std::int32_t>::max();
  if (!fits) return std::nullopt;
  return static_cast<std::int32_t>(rounded);
}

std::int32_t roundHalfEven(double value) {
  if (const auto rounded = roundToLong(value)) return *rounded;
  if (std::isnan(value)) return 0;
  return value < 0 ? std::numeric_limits<std::int32_t>::min()
                   : std::numeric_limits<std::int32_t>::max();
}

std::string formatBase(double value) {
  Decimal number = toDecimal(value);
  roundTo(number, 2);
  if (number.fraction.back() == '0') number.fraction.pop_back();
  return join(number);
}

std::string formatTenths(double value) {
  Decimal number = toDecimal(value);
  roundTo(number, 1);
  return join(number);
}

std::string formatThreeDigits(double value) {
  Decimal number = toDecimal(value);
  roundTo(number, 0);
  if (number.whole.size() < 3) number.whole.insert(0, 3 - number.whole.size(), '0');
  return join(number);
}

}  // namespace qv3
