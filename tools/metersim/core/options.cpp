#include "tools/metersim/core/options.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/metersim/core/text.h"

namespace qv3::metersim {
namespace {

/// Takes the option's value into the options; an error's text, or nothing.
using Taker = std::string (*)(Options& options, const std::string& value);

struct Row {
  std::string_view name;
  std::string_view value;  ///< what it is called in the help; empty: the option takes none
  Taker take;
  std::string_view help;
};

std::string wantsNumber(const std::string& range) {
  return "wants a whole number, " + range;
}

std::string takeUnescaped(std::string& target, const std::string& value) {
  auto characters = unescaped(value);
  if (!characters) return "knows only \\r, \\n, \\\\ and \\xHH";
  target = std::move(*characters);
  return {};
}

std::string takeAnswer(Options& options, const std::string& value) {
  return takeUnescaped(options.simulator.identity.answer.emplace(), value);
}

std::string takeTail(Options& options, const std::string& value) {
  return takeUnescaped(options.simulator.identity.tail, value);
}

std::string takeSignal(Options& options, const std::string& value) {
  SignalSpecResult result = parseSignalSpec(value);
  options.signal = std::move(result.spec);
  return std::move(result.error);
}

std::string takeAtEnd(Options& options, const std::string& value) {
  SimulatorConfig& config = options.simulator;
  config.quitAtEnd = value == "exit";
  if (value == "repeat") {
    config.atEnd = AtEnd::Repeat;
  } else if (value == "hold") {
    config.atEnd = AtEnd::Hold;
  } else if (value == "stop" || value == "exit") {
    config.atEnd = AtEnd::Stop;
  } else {
    return "wants repeat, hold, stop or exit";
  }
  return {};
}

std::string takeSeed(Options& options, const std::string& value) {
  const auto seed = toWhole(value);
  if (!seed || *seed < 0) return wantsNumber("0 or more");
  options.simulator.seed = static_cast<std::uint64_t>(*seed);
  return {};
}

std::string takeRate(Options& options, const std::string& value) {
  const auto rate = toWhole(value);
  if (!rate || *rate < -100000 || *rate > 100000) return wantsNumber("-100000 to 100000");
  options.simulator.ratePpm = static_cast<int>(*rate);
  return {};
}

std::string takeCatchUp(Options& options, const std::string& value) {
  constexpr long kAll = 1'000'000;
  const auto frames = value == "all" ? kAll : toWhole(value);
  if (!frames || *frames < 1 || *frames > kAll) return wantsNumber("1 or more, or \"all\"");
  options.simulator.catchUp = static_cast<int>(*frames);
  return {};
}

std::string takeBacklog(Options& options, const std::string& value) {
  const auto seconds = toNumber(value);
  if (!seconds || *seconds < kFrameSeconds || *seconds > 60) return "wants seconds, 0.02 to 60";
  options.backlog = fromSeconds(*seconds);
  return {};
}

std::string takeAppointment(Options& options, const std::string& value, bool repeated) {
  AppointmentResult result = parseAppointment(value, repeated);
  if (result.error.empty()) {
    options.simulator.appointments.push_back(std::move(result.appointment));
  }
  return std::move(result.error);
}

std::string takePath(std::string& target, const std::string& value) {
  if (value.empty()) return "wants a name";
  target = value;
  return {};
}

constexpr std::array kRows{
    Row{"--model", "XX",
        [](Options& o, const std::string& v) {
          o.simulator.identity.model = v;
          return std::string();
        },
        "Two characters; 3A (as without this option), 40, 2A and 31 are known. Any other is "
        "identified as what it is, but no program knows how to start it."},
    Row{"--field2", "TEXT",
        [](Options& o, const std::string& v) {
          o.simulator.identity.field2 = v;
          return std::string();
        },
        "Second field of the answer to V, the boot loader's version (1.04)."},
    Row{"--field3", "TEXT",
        [](Options& o, const std::string& v) {
          o.simulator.identity.field3 = v;
          return std::string();
        },
        "Third field, the serial number (20417)."},
    Row{"--answer", "TEXT", takeAnswer,
        "The whole answer to V instead, with \\r, \\n, \\\\ and \\xHH. Empty: no answer, as from a "
        "device that is no meter."},
    Row{"--tail", "TEXT", takeTail,
        "Characters between the four digits of a frame and its CR. Models 40 and 2A may have "
        "some, for 3A and 31 they are an error."},
    Row{"--autostart", "",
        [](Options& o, const std::string&) {
          o.simulator.autostart = true;
          return std::string();
        },
        "Stream from the start, as if U and R had been heard."},
    Row{"--signal", "SIGNAL", takeSignal, "What the electrodes measure (skin); see SIGNALS."},
    Row{"--csv-end", "WHAT", takeAtEnd,
        "After the last line of a csv signal: repeat (as without this option), hold the last "
        "reading, stop sending, or exit once everything is read."},
    Row{"--seed", "N", takeSeed,
        "The chance behind the skin signal and garbage (1). The same seed gives the same "
        "readings."},
    Row{"--link", "PATH", [](Options& o, const std::string& v) { return takePath(o.link, v); },
        "Keep a symbolic link to the terminal there, also after a hang-up. It is removed at the "
        "end."},
    Row{"--control", "FIFO",
        [](Options& o, const std::string& v) { return takePath(o.control, v); },
        "Take commands from this named pipe, one a line; see COMMANDS. It is made if it is "
        "missing, and then removed at the end. Writers may come and go."},
    Row{"--at", "SECONDS:COMMAND",
        [](Options& o, const std::string& v) { return takeAppointment(o, v, false); },
        "Do this so long after the first start of the stream. May be given often."},
    Row{"--every", "SECONDS:COMMAND",
        [](Options& o, const std::string& v) { return takeAppointment(o, v, true); },
        "Do this again and again. May be given often."},
    Row{"--rate-ppm", "N", takeRate,
        "The meter's clock is N millionths faster than the computer's (0; -100000 to 100000)."},
    Row{"--catch-up", "N", takeCatchUp,
        "A late wake-up of this program sends up to N frames at once (2); if more are due, they "
        "are lost and only the newest goes out. \"all\": nothing is ever lost."},
    Row{"--backlog", "SECONDS", takeBacklog,
        "Characters that nobody has read for so long are thrown away (0.3)."},
    Row{"--log", "FILE", [](Options& o, const std::string& v) { return takePath(o.log, v); },
        "Write a line for every frame sent: its time in nanoseconds of the monotonic clock, a "
        "blank, the frame without its CR."},
    Row{"--verbose", "",
        [](Options& o, const std::string&) {
          o.verbose = true;
          return std::string();
        },
        "Say on the error output what is heard and what happens."},
    Row{"--help", "",
        [](Options& o, const std::string&) {
          o.help = true;
          return std::string();
        },
        "Print this and end."},
};

const Row* rowOf(std::string_view name) {
  for (const Row& row : kRows) {
    if (row.name == name) return &row;
  }
  return nullptr;
}

/// "--name=value" and "--name value"; moves `index` over a value of its own.
std::string takeArgument(Options& options, const std::vector<std::string>& arguments,
                         std::size_t& index) {
  const std::string& argument = arguments[index];
  const std::size_t equals = argument.find('=');
  const std::string name = argument.substr(0, equals);
  const Row* row = rowOf(name);
  if (row == nullptr) return "no such option: " + argument;
  std::optional<std::string> value;
  if (equals != std::string::npos) value = argument.substr(equals + 1);
  if (row->value.empty() && value) return name + " takes no value";
  if (!row->value.empty() && !value) {
    if (index + 1 == arguments.size()) return name + " wants " + std::string(row->value);
    value = arguments[++index];
  }
  const std::string error = row->take(options, value.value_or(std::string()));
  return error.empty() ? error : name + ": " + error;
}

}  // namespace

OptionsResult parseOptions(const std::vector<std::string>& arguments) {
  OptionsResult result;
  for (std::size_t i = 0; i < arguments.size() && result.error.empty(); ++i) {
    result.error = takeArgument(result.options, arguments, i);
  }
  if (result.error.empty()) result.error = identityError(result.options.simulator.identity);
  return result;
}

std::vector<OptionHelp> optionHelp() {
  std::vector<OptionHelp> list;
  for (const Row& row : kRows) {
    std::string usage(row.name);
    if (!row.value.empty()) usage.append(1, ' ').append(row.value);
    list.push_back({usage, std::string(row.help)});
  }
  return list;
}

}  // namespace qv3::metersim
