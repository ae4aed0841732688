#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace qv3 {

/// The characters of a script's text: one character a byte, U+0000..U+00FF. Throws
/// std::runtime_error for anything beyond.
std::string bytesOf(const std::string& utf8);

/// One line of a replay script, checked: `t` is a number not before the last one, the event is one
/// that the format knows and its operands have their types. Everything thrown is a
/// std::runtime_error (or nlohmann's exception, which is one) with a text for the user.
struct ScriptEvent {
  double t = 0;  ///< seconds since the script began
  std::string kind;
  nlohmann::json fields;
  nlohmann::json time;  ///< `t` as it was written
};

/// Parses a line. `lastTime` is the time of the line before.
ScriptEvent parseEvent(const std::string& line, double lastTime);

}  // namespace qv3
