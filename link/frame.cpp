#include "link/frame.h"

#include <algorithm>
#include <optional>

#include "measure/numbers.h"

namespace qv3 {
namespace {

constexpr std::size_t kDigits = 4;
constexpr double kLocalScale = 1.068;
constexpr std::int32_t kHighest = 65535;

int digitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

std::optional<std::int32_t> hexReading(std::string_view body) {
  std::int32_t value = 0;
  for (const char c : body.substr(0, kDigits)) {
    const int digit = digitValue(c);
    if (digit < 0) return std::nullopt;
    value = value * 16 + digit;
  }
  return value;
}

Frame reading(FrameKind kind, std::string_view body, char recordTag = 'P') {
  const auto value = hexReading(body);
  if (!value) return {FrameKind::Malformed};
  return {kind, *value, recordTag};
}

Frame decode3A(char tag, std::string_view body) {
  if (body.size() != kDigits || (tag != 'P' && tag != 'T')) return {FrameKind::Malformed};
  Frame frame = reading(FrameKind::Reading, body);
  frame.switchPressed = tag == 'T';
  return frame;
}

Frame decode40(char tag, std::string_view body) {
  if (body.size() < kDigits || (tag != 'P' && tag != 'O')) return {FrameKind::Malformed};
  return reading(FrameKind::Reading, body, tag);
}

Frame decode31(char tag, std::string_view body) {
  if (body.size() != kDigits) return {FrameKind::Malformed};
  if (tag == 'R') return reading(FrameKind::Remote, body);
  if (tag == 'X') return {FrameKind::Fault};
  if (tag != 'L') return {FrameKind::Ignored};
  Frame frame = reading(FrameKind::Local, body);
  frame.reading = std::min(roundHalfEven(frame.reading * kLocalScale), kHighest);
  return frame;
}

}  // namespace

Frame decodeFrame(std::string_view model, std::string_view frame) {
  const char tag = frame.front();
  const std::string_view body = frame.substr(1);
  if (model == "3A") return decode3A(tag, body);
  if (model == "40" || model == "2A") return decode40(tag, body);
  if (model == "31") return decode31(tag, body);
  return {FrameKind::Ignored};
}

}  // namespace qv3
