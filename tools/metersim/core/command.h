#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "tools/metersim/core/nanos.h"
#include "tools/metersim/core/signalspec.h"
#include "tools/metersim/core/skinevents.h"

namespace qv3::metersim {

// What can be asked of the running meter, by a fault option or through the control pipe.
struct Garbage {
  int count;
};
struct DropReturns {
  int count;
};
struct Burst {
  int count;
};
struct Stall {
  std::optional<Nanos> time;  ///< none: until Resume
};
struct Resume {};
struct HangUp {
  std::optional<Nanos> time;  ///< none: until Return
};
struct Return {};
struct ErrorFrames {
  int count;
};
struct Press {};
struct Send {
  std::string characters;
};
struct ChangeSignal {
  SignalSpec spec;
};
struct Quit {};

using Command = std::variant<Garbage, DropReturns, Burst, Stall, Resume, HangUp, Return,
                             ErrorFrames, Press, Send, ChangeSignal, Fall, Movement, Quit>;

/// Longer lines are no commands.
constexpr std::size_t kLongestCommand = 4000;

struct CommandResult {
  std::optional<Command> command;  ///< none with an error, and none for a blank line or a comment
  std::string error;
};

/// One line: a word, then what it takes.
CommandResult parseCommand(std::string_view line);

}  // namespace qv3::metersim
