#include "tools/metersim/core/text.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace qv3::metersim {
namespace {

template <typename Number>
std::optional<Number> parsed(std::string_view text) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

std::optional<char> hexByte(std::string_view digits) {
  unsigned value = 0;
  const auto [stop, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (digits.size() != 2 || error != std::errc() || stop != digits.data() + 2) return std::nullopt;
  return static_cast<char>(value);
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (;;) {
    const std::size_t end = text.find(separator);
    pieces.push_back(text.substr(0, end));
    if (end == std::string_view::npos) return pieces;
    text.remove_prefix(end + 1);
  }
}

std::optional<double> toNumber(std::string_view text) {
  const auto value = parsed<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<long> toWhole(std::string_view text) {
  return parsed<long>(text);
}

std::optional<std::string> unescaped(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\') {
      result += text[i];
      continue;
    }
    const char kind = ++i < text.size() ? text[i] : '\0';
    if (kind == 'r') {
      result += '\r';
    } else if (kind == 'n') {
      result += '\n';
    } else if (kind == '\\') {
      result += '\\';
    } else if (const auto byte = kind == 'x' ? hexByte(text.substr(i + 1, 2)) : std::nullopt) {
      result += *byte;
      i += 2;
    } else {
      return std::nullopt;
    }
  }
  return result;
}

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '\r') {
      result += "\\r";
    } else if (c == '\n') {
      result += "\\n";
    } else if (c == '\\') {
      result += "\\\\";
    } else if (c >= ' ' && c <= '~') {
      result += c;
    } else {
      char hex[5];
      std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(c) & 0xFFU);
      result += hex;
    }
  }
  return result;
}

}  // namespace qv3::metersim
