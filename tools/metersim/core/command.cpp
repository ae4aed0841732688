#include "tools/metersim/core/command.h"

#include <array>

#include "tools/metersim/core/text.h"

namespace qv3::metersim {
namespace {

constexpr double kLongestTime = 86400;

CommandResult failure(std::string text) {
  return {std::nullopt, std::move(text)};
}

/// A number that may be left out, where `usual` takes its place.
struct Limits {
  double usual;
  double lowest;
  double highest;
};

struct NumberResult {
  double value = 0;
  std::string error;
};

NumberResult parseNumber(std::string_view text, const Limits& limits) {
  if (text.empty()) return {limits.usual, {}};
  const auto number = toNumber(text);
  if (number && *number >= limits.lowest && *number <= limits.highest) return {*number, {}};
  return {0, "wants a number, " + std::to_string(static_cast<long>(limits.lowest)) + " to " +
                 std::to_string(static_cast<long>(limits.highest)) + ", not \"" + escaped(text) +
                 "\""};
}

template <typename Counted>
CommandResult counted(std::string_view rest, int usual) {
  const NumberResult number = parseNumber(rest, {static_cast<double>(usual), 1, 1000});
  if (!number.error.empty()) return failure(number.error);
  const int count = static_cast<int>(number.value);
  if (count != number.value) return failure("wants a whole number");
  return {Counted{count}, {}};
}

template <typename Timed>
CommandResult timed(std::string_view rest) {
  if (rest.empty()) return {Timed{std::nullopt}, {}};
  const NumberResult number = parseNumber(rest, {0, 0, kLongestTime});
  if (!number.error.empty()) return failure(number.error);
  return {Timed{fromSeconds(number.value)}, {}};
}

template <typename Plain>
CommandResult plain(std::string_view rest) {
  if (!rest.empty()) return failure("takes nothing");
  return {Plain{}, {}};
}

template <typename Event>
CommandResult sized(std::string_view rest) {
  Event event;
  const NumberResult number = parseNumber(rest, {event.size, 1, kHighestReading});
  if (!number.error.empty()) return failure(number.error);
  event.size = number.value;
  return {event, {}};
}

CommandResult parseSend(std::string_view rest) {
  auto characters = unescaped(rest);
  if (!characters) return failure("knows only \\r, \\n, \\\\ and \\xHH");
  if (characters->empty()) return failure("wants characters");
  return {Send{std::move(*characters)}, {}};
}

CommandResult parseSignal(std::string_view rest) {
  SignalSpecResult result = parseSignalSpec(rest);
  if (!result.error.empty()) return failure(std::move(result.error));
  return {ChangeSignal{std::move(result.spec)}, {}};
}

struct Verb {
  std::string_view name;
  CommandResult (*parse)(std::string_view rest);
};

constexpr std::array<Verb, 14> kVerbs{{
    {"garbage", [](std::string_view rest) { return counted<Garbage>(rest, 8); }},
    {"dropcr", [](std::string_view rest) { return counted<DropReturns>(rest, 1); }},
    {"burst", [](std::string_view rest) { return counted<Burst>(rest, 5); }},
    {"stall", timed<Stall>},
    {"resume", plain<Resume>},
    {"hangup", timed<HangUp>},
    {"return", plain<Return>},
    {"x", [](std::string_view rest) { return counted<ErrorFrames>(rest, 6); }},
    {"press", plain<Press>},
    {"send", parseSend},
    {"signal", parseSignal},
    {"fall", sized<Fall>},
    {"move", sized<Movement>},
    {"quit", plain<Quit>},
}};

}  // namespace

CommandResult parseCommand(std::string_view line) {
  if (line.size() > kLongestCommand) return failure("the line is too long");
  const std::string_view text = trimmed(line);
  if (text.empty() || text.front() == '#') return {};
  const std::size_t end = text.find_first_of(" \t");
  const std::string_view name = text.substr(0, end);
  const std::string_view rest =
      end == std::string_view::npos ? std::string_view() : trimmed(text.substr(end));
  for (const Verb& verb : kVerbs) {
    if (verb.name != name) continue;
    CommandResult result = verb.parse(rest);
    if (!result.error.empty()) result.error = std::string(name) + ": " + result.error;
    return result;
  }
  return failure("no such command \"" + escaped(name.substr(0, 40)) + "\"");
}

}  // namespace qv3::metersim
