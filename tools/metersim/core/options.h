#pragma once

#include <string>
#include <vector>

#include "tools/metersim/core/nanos.h"
#include "tools/metersim/core/signalspec.h"
#include "tools/metersim/core/simulator.h"

namespace qv3::metersim {

/// All that the command line says.
struct Options {
  SimulatorConfig simulator;
  SignalSpec signal;
  std::string link;                                ///< symbolic link to the terminal; empty: none
  std::string control;                             ///< named pipe for commands; empty: none
  std::string log;                                 ///< file for the times of frames; empty: none
  Nanos backlog = std::chrono::milliseconds(300);  ///< what is older and unread is thrown away
  bool verbose = false;
  bool help = false;
};

struct OptionsResult {
  Options options;
  std::string error;  ///< empty if the command line was good
};

/// The arguments after the program's name.
OptionsResult parseOptions(const std::vector<std::string>& arguments);

/// One line of the list of options for people: what to type, what it does.
struct OptionHelp {
  std::string usage;
  std::string text;
};
std::vector<OptionHelp> optionHelp();

}  // namespace qv3::metersim
