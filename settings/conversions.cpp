#include "settings/conversions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "measure/numbers.h"

namespace qv3 {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase) {
  if (text.size() != lowerCase.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (lower != lowerCase[i]) return false;
  }
  return true;
}

/// Only the space counts as a blank here; the file reader has taken all others off before.
std::string_view withoutSpaces(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// Moves the leading digits of `text` to `plain`; with `commas` those between two digits are
/// dropped. The result is how many digits moved.
std::size_t takeDigits(std::string_view& text, std::string& plain, bool commas) {
  std::size_t taken = 0;
  while (!text.empty()) {
    const std::size_t next = commas && taken > 0 ? text.find_first_not_of(',') : 0;
    if (next == std::string_view::npos || !isDigit(text[next])) break;
    plain += text[next];
    text.remove_prefix(next + 1);
    ++taken;
  }
  return taken;
}

bool takeSign(std::string_view& text, std::string& plain) {
  if (text.empty() || (text.front() != '+' && text.front() != '-')) return false;
  if (text.front() == '-') plain += '-';
  text.remove_prefix(1);
  return true;
}

/// False if an exponent begins and has no digits.
bool takeExponent(std::string_view& text, std::string& plain) {
  if (text.empty() || (text.front() != 'E' && text.front() != 'e')) return true;
  text.remove_prefix(1);
  plain += 'e';
  takeSign(text, plain);
  return takeDigits(text, plain, false) > 0;
}

/// The number as std::from_chars wants it ("-1234.5e-3"), nothing if the text is no number.
std::optional<std::string> plainNumber(std::string_view text) {
  text = withoutSpaces(text);
  std::string plain;
  takeSign(text, plain);
  std::size_t digits = takeDigits(text, plain, true);
  if (!text.empty() && text.front() == '.') {
    text.remove_prefix(1);
    plain += digits == 0 ? "0." : ".";
    const std::size_t decimals = takeDigits(text, plain, false);
    if (decimals == 0) plain += '0';
    digits += decimals;
  }
  if (digits == 0 || !takeExponent(text, plain) || !text.empty()) return std::nullopt;
  return plain;
}

/// Of a number that is out of range: whether it is too small, not too large. The exponent itself
/// may be too long for any integer.
bool isTooSmall(std::string_view plain) {
  constexpr long long kHuge = 1'000'000'000'000'000;
  const std::size_t mark = std::min(plain.find('e'), plain.size());
  const std::string_view mantissa = plain.substr(0, mark);
  long long exponent = 0;
  if (mark < plain.size()) {
    const auto [end, error] =
        std::from_chars(plain.data() + mark + 1, plain.data() + plain.size(), exponent);
    if (error != std::errc()) exponent = plain[mark + 1] == '-' ? -kHuge : kHuge;
  }
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first = mantissa.find_first_of("123456789");
  return static_cast<long long>(point) - static_cast<long long>(first) + exponent <= 0;
}

template <typename Real>
std::optional<Real> nearest(std::string_view text) {
  const std::optional<std::string> plain = plainNumber(text);
  if (!plain) return std::nullopt;
  Real value = 0;
  const auto [end, error] = std::from_chars(plain->data(), plain->data() + plain->size(), value);
  if (error == std::errc::result_out_of_range) {
    if (isTooSmall(*plain)) return Real{0};
    return std::nullopt;
  }
  if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
  return value;
}

template <typename Whole>
std::optional<Whole> whole(std::string_view text) {
  const std::optional<double> value = toDouble(text);
  const std::optional<std::int32_t> rounded = value ? roundToLong(*value) : std::nullopt;
  if (!rounded || !std::in_range<Whole>(*rounded)) return std::nullopt;
  return static_cast<Whole>(*rounded);
}

}  // namespace

std::optional<double> toDouble(std::string_view text) {
  return nearest<double>(text);
}

std::optional<float> toSingle(std::string_view text) {
  return nearest<float>(text);
}

std::optional<std::int32_t> toLong(std::string_view text) {
  return whole<std::int32_t>(text);
}

std::optional<std::int16_t> toInteger(std::string_view text) {
  return whole<std::int16_t>(text);
}

std::optional<std::uint8_t> toByte(std::string_view text) {
  return whole<std::uint8_t>(text);
}

std::optional<bool> toBoolean(std::string_view text) {
  const std::string_view word = withoutSpaces(text);
  if (equalsIgnoringCase(word, "true")) return true;
  if (equalsIgnoringCase(word, "false")) return false;
  const std::optional<double> number = toDouble(text);
  if (!number) return std::nullopt;
  return *number != 0.0;
}

std::string fromBoolean(bool value) {
  return value ? "True" : "False";
}

std::string fromLong(std::int32_t value) {
  return std::to_string(value);
}

std::string fromDouble(double value) {
  // 309 digits before the point or 1074 after it are the most that a double needs.
  std::array<char, 1100> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(),
                                          value == 0.0 ? 0.0 : value, std::chars_format::fixed);
  return {digits.data(), end};
}

}  // namespace qv3
