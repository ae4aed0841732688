#include "recording/soundwords.h"

#include <algorithm>
#include <limits>

#include "recording/naming.h"
#include "recording/sounderrors.h"

namespace qv3 {
namespace {

bool isBlank(char letter) {
  return letter == ' ' || letter == '\t';
}

bool isDigit(char letter) {
  return letter >= '0' && letter <= '9';
}

std::size_t skipBlanks(std::string_view text, std::size_t from) {
  while (from < text.size() && isBlank(text[from])) ++from;
  return from;
}

std::size_t wordEnd(std::string_view text, std::size_t from) {
  while (from < text.size() && !isBlank(text[from])) ++from;
  return from;
}

}  // namespace

bool SoundWord::is(std::string_view keyword) const {
  return !quoted && sameIgnoringCase(text, keyword);
}

SoundWords splitSoundCommand(std::string_view command) {
  SoundWords result;
  for (std::size_t at = skipBlanks(command, 0); at < command.size(); at = skipBlanks(command, at)) {
    if (command[at] != '"') {
      const std::size_t end = wordEnd(command, at);
      result.words.push_back({std::string(command.substr(at, end - at)), false});
      at = end;
      continue;
    }
    const std::size_t close = command.find('"', at + 1);
    if (close == std::string_view::npos) {
      result.fault = soundcode::kQuoteOpen;
      return result;
    }
    if (close + 1 < command.size() && !isBlank(command[close + 1])) {
      result.fault = soundcode::kAfterQuote;
      return result;
    }
    result.words.push_back({std::string(command.substr(at + 1, close - at - 1)), true});
    at = close + 1;
  }
  if (result.words.size() > 1 && result.words.back().is("wait")) result.words.pop_back();
  return result;
}

SoundNumber parseSoundNumber(std::string_view text) {
  const bool negative = text.starts_with('-');
  const std::string_view digits = negative ? text.substr(1) : text;
  if (digits.empty() || !std::all_of(digits.begin(), digits.end(), isDigit)) {
    return {soundcode::kBadNumber, 0};
  }
  if (negative) return {soundcode::kOutOfRange, 0};
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  std::int64_t value = 0;
  for (const char letter : digits) {
    const std::int64_t digit = letter - '0';
    if (value > (kMost - digit) / 10) return {0, kMost};
    value = value * 10 + digit;
  }
  return {0, value};
}

}  // namespace qv3
