#pragma once

#include <span>
#include <string>
#include <vector>

namespace qv3 {

/// The command line.
struct Options {
  std::vector<std::string> ports;  ///< each "N=PATH"
  std::string home;                ///< empty: not given, as below
  std::string capture;
  std::string session;  ///< a .qvd to open
  bool version = false;
  bool help = false;
};

struct OptionsResult {
  Options options;
  std::string error;  ///< empty, or what is wrong with the command line
};

/// `arguments` without the program's name. The toolkit's own options, such as -platform, are passed
/// over.
OptionsResult parseOptions(std::span<const std::string> arguments);

std::string helpText();

}  // namespace qv3
