#include "app/options.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace qv3 {
namespace {

/// Options of the toolkit that a user may want, with how many values follow.
struct ToolkitOption {
  std::string_view name;
  int values;
};
constexpr std::array kToolkit = {
    ToolkitOption{"platform", 1},        ToolkitOption{"platformpluginpath", 1},
    ToolkitOption{"platformtheme", 1},   ToolkitOption{"plugin", 1},
    ToolkitOption{"qwindowgeometry", 1}, ToolkitOption{"qwindowicon", 1},
    ToolkitOption{"qwindowtitle", 1},    ToolkitOption{"style", 1},
    ToolkitOption{"stylesheet", 1},      ToolkitOption{"session", 1},
    ToolkitOption{"display", 1},         ToolkitOption{"geometry", 1},
    ToolkitOption{"reverse", 0},         ToolkitOption{"widgetcount", 0}};

const ToolkitOption* toolkitOption(std::string_view argument) {
  const auto dashes = std::min(argument.find_first_not_of('-'), argument.size());
  if (dashes == 0 || dashes > 2) return nullptr;
  const std::string_view name = argument.substr(dashes, argument.find('=') - dashes);
  const auto known = std::find_if(kToolkit.begin(), kToolkit.end(),
                                  [&](const ToolkitOption& option) { return option.name == name; });
  return known == kToolkit.end() ? nullptr : &*known;
}

/// In any case: other systems do not tell ".QVD" from ".qvd".
bool isSessionName(std::string_view path) {
  constexpr std::string_view kExtension = ".qvd";
  if (path.size() <= kExtension.size()) return false;
  const std::string_view end = path.substr(path.size() - kExtension.size());
  return std::equal(end.begin(), end.end(), kExtension.begin(), [](char have, char want) {
    return std::tolower(static_cast<unsigned char>(have)) == want;
  });
}

/// Takes the arguments one by one.
class Parser {
 public:
  explicit Parser(std::span<const std::string> arguments) : m_rest(arguments) {}

  OptionsResult parse() {
    while (!m_rest.empty() && m_result.error.empty()) take(next());
    return std::move(m_result);
  }

 private:
  std::string next() {
    std::string argument = m_rest.front();
    m_rest = m_rest.subspan(1);
    return argument;
  }

  void take(const std::string& argument) {
    Options& options = m_result.options;
    const auto equals = argument.find('=');
    const std::string name = argument.substr(0, equals);
    if (name == "--port") {
      options.ports.push_back(value(argument, equals));
    } else if (name == "--home") {
      options.home = value(argument, equals);
    } else if (name == "--capture") {
      options.capture = value(argument, equals);
    } else if (argument == "--version") {
      options.version = true;
    } else if (argument == "--help") {
      options.help = true;
    } else if (const ToolkitOption* toolkit = toolkitOption(argument)) {
      if (equals == std::string::npos) skip(toolkit->values);
    } else if (argument.starts_with('-')) {
      m_result.error = "unknown option " + argument;
    } else {
      takeSession(argument);
    }
  }

  void takeSession(const std::string& path) {
    if (!isSessionName(path)) {
      m_result.error = "\"" + path + "\" is not a session, which ends in .qvd";
    } else if (!m_result.options.session.empty()) {
      m_result.error = "only one session can be opened, not \"" + m_result.options.session +
                       "\" and \"" + path + '"';
    } else {
      m_result.options.session = path;
    }
  }

  std::string value(const std::string& argument, std::string::size_type equals) {
    std::string text;
    if (equals != std::string::npos) {
      text = argument.substr(equals + 1);
    } else if (!m_rest.empty() && !m_rest.front().starts_with("--")) {
      text = next();
    }
    if (text.empty()) m_result.error = argument.substr(0, equals) + " needs a value";
    return text;
  }

  void skip(int count) {
    m_rest = m_rest.subspan(std::min(static_cast<std::size_t>(count), m_rest.size()));
  }

  std::span<const std::string> m_rest;
  OptionsResult m_result;
};

}  // namespace

OptionsResult parseOptions(std::span<const std::string> arguments) {
  return Parser(arguments).parse();
}

std::string helpText() {
  return "Usage: qv3-varnel [options] [SESSION.qvd]\n"
         "\n"
         "The session is loaded once the program is up, as Load would.\n"
         "\n"
         "  --port N=PATH   port number N (1 to 16) is the device at PATH; may be repeated\n"
         "  --home DIR      keep settings and session config in DIR\n"
         "  --capture FILE  write everything the meter sends and the user does to FILE;\n"
         "                  each new connection begins a new file, FILE-2 and so on\n"
         "  --version       print the version and exit\n"
         "  --help          print this and exit\n"
         "\n"
         "Ports can also be named in the variable QV3_VARNEL_PORTS (\"3=/dev/pts/5,...\") and\n"
         "in the file qv3_Varnel.ports of the settings folder, one a line.\n";
}

}  // namespace qv3
