#include "recording/naming.h"

#include <algorithm>
#include <cctype>

#include "measure/numbers.h"

namespace qv3 {
namespace {

// The longest name that common file systems take is 255 bytes. The longest thing that follows a
// prefix is "yy-mm-dd__Hh.Nn.Ss", the extension and the "~2" of a name that was in the way.
constexpr std::size_t kLongestName = 255;
constexpr std::size_t kAfterPrefix = 18 + 4 + 8;

std::string twoDigits(std::int64_t value) {
  const std::string digits = std::to_string(value);
  return digits.size() < 2 ? '0' + digits : digits;
}

char lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

}  // namespace

std::string recordingName(const std::string& prefix, std::int32_t suffixType, std::int32_t number,
                          const std::string& fileStamp) {
  return prefix + (suffixType == 0 ? formatThreeDigits(number) : fileStamp);
}

std::string_view suffixPlaceholder(std::int32_t suffixType) {
  return suffixType == 0 ? "nnn" : "Date__Time";
}

PrefixFault checkPrefix(std::string_view prefix) {
  constexpr std::string_view kRefused = ":*?\"<>|";
  for (const char c : prefix) {
    const bool control = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    if (control || kRefused.find(c) != std::string_view::npos) return PrefixFault::Character;
  }
  const std::size_t slash = prefix.rfind('/');
  const std::size_t last = slash == std::string_view::npos ? 0 : slash + 1;
  if (prefix.size() - last + kAfterPrefix > kLongestName) return PrefixFault::Length;
  return PrefixFault::None;
}

NumberedName splitNumberedName(std::string_view name) {
  constexpr std::size_t kDigits = 3;
  if (name.size() < kDigits) return {std::string(name), 0};
  NumberedName split{std::string(name.substr(0, name.size() - kDigits)), 0};
  for (const char c : name.substr(name.size() - kDigits)) {
    if (c < '0' || c > '9') return {split.prefix, 0};
    split.number = split.number * 10 + (c - '0');
  }
  return split;
}

int skipSeconds(std::int32_t sessionSeconds) {
  if (sessionSeconds >= 3600) return 60;
  if (sessionSeconds >= 1800) return 30;
  return sessionSeconds >= 600 ? 15 : 10;
}

std::string formatDuration(std::int64_t seconds) {
  const std::int64_t whole = std::max<std::int64_t>(seconds, 0);
  return std::to_string(whole / 3600) + ':' + twoDigits(whole / 60 % 60) + ':' +
         twoDigits(whole % 60);
}

bool sameIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char left, char right) { return lower(left) == lower(right); });
}

std::string withExtension(const std::string& name, std::string_view extension) {
  const std::size_t size = std::min(name.size(), extension.size());
  const bool there = sameIgnoringCase(name.substr(name.size() - size), extension);
  return there ? name : name + std::string(extension);
}

}  // namespace qv3
