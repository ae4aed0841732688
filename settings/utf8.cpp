#include "settings/utf8.h"

#include <cstdint>

namespace qv3 {

namespace {

std::uint8_t byteAt(std::string_view bytes, std::size_t i) {
  return static_cast<std::uint8_t>(bytes[i]);
}

bool isContinuation(std::uint8_t byte) {
  return (byte & 0xc0) == 0x80;
}

/// Length of the valid sequence at the front, 0 if there is none: no over-long forms, no
/// surrogates, nothing above U+10FFFF.
std::size_t sequenceLength(std::string_view bytes) {
  const std::uint8_t lead = byteAt(bytes, 0);
  if (lead < 0x80) return 1;
  const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
  if (lead < 0xc2 || lead > 0xf4 || bytes.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if (!isContinuation(byteAt(bytes, i))) return 0;
  }
  const std::uint8_t second = byteAt(bytes, 1);
  const bool invalid = (lead == 0xe0 && second < 0xa0) || (lead == 0xed && second > 0x9f) ||
                       (lead == 0xf0 && second < 0x90) || (lead == 0xf4 && second > 0x8f);
  return invalid ? 0 : length;
}

}  // namespace

std::string textFromBytes(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    std::size_t length = sequenceLength(bytes);
    if (length == 0) {
      const std::uint8_t latin1 = byteAt(bytes, 0);
      text += static_cast<char>(0xc0 | (latin1 >> 6));
      text += static_cast<char>(0x80 | (latin1 & 0x3f));
      length = 1;
    } else {
      text += bytes.substr(0, length);
    }
    bytes.remove_prefix(length);
  }
  return text;
}

std::string firstCharacters(const std::string& text, std::size_t count) {
  std::size_t end = 0;
  for (; end < text.size(); ++end) {
    if (isContinuation(byteAt(text, end))) continue;
    if (count == 0) break;
    --count;
  }
  return text.substr(0, end);
}

}  // namespace qv3
