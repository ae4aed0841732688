#include "recording/naming.h"

#include <algorithm>

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

/// In every locale: names mean the same to whoever shares them.
char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
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
  std::size_t part = 0;
  for (std::size_t slash = prefix.find('/'); slash != std::string_view::npos;
       slash = prefix.find('/', part)) {
    if (slash - part > kLongestName) return PrefixFault::Length;
    part = slash + 1;
  }
  const bool fits = prefix.size() - part + kAfterPrefix <= kLongestName;
  return fits ? PrefixFault::None : PrefixFault::Length;
}

NumberedName splitNumberedName(std::string_view name) {
  std::size_t at = name.size();
  for (int characters = 0; characters < 3; ++characters) {
    if (at == 0) return {std::string(name), 0};
    do --at;
    while (at > 0 && isInsideCharacter(name[at]));
  }
  NumberedName split{std::string(name.substr(0, at)), 0};
  for (const char c : name.substr(at)) {
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

bool isInsideCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
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
