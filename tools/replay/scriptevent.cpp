#include "tools/replay/scriptevent.h"

#include <array>
#include <stdexcept>
#include <string_view>

namespace qv3 {
namespace {

constexpr std::array<std::string_view, 16> kKinds = {
    "meta",  "rx", "bytes", "set",    "bdrunning", "keyup",    "keydown", "key",
    "mouse", "bd", "knob",  "redraw", "tick",      "audiopos", "record",  "play"};

std::string kindOf(const nlohmann::json& fields) {
  for (const std::string_view kind : kKinds) {
    if (fields.contains(std::string(kind))) return std::string(kind);
  }
  throw std::runtime_error("no event that is known");
}

}  // namespace

std::string bytesOf(const std::string& utf8) {
  std::string bytes;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      bytes += utf8[i];
      continue;
    }
    // U+0080..U+00FF are C2 80 .. C3 BF; the parser has made sure that a second byte follows.
    if (lead > 0xC3) throw std::runtime_error("a character above U+00FF");
    const auto second = static_cast<unsigned char>(utf8[++i]);
    bytes += static_cast<char>((lead & 3) << 6 | (second & 0x3F));
  }
  return bytes;
}

ScriptEvent parseEvent(const std::string& line, double lastTime) {
  ScriptEvent event;
  event.fields = nlohmann::json::parse(line);
  if (!event.fields.is_object()) throw std::runtime_error("not an object");
  event.kind = kindOf(event.fields);
  event.t = lastTime;
  if (event.kind == "meta") return event;
  event.time = event.fields.at("t");
  event.t = event.time.get<double>();
  if (event.t < lastTime) throw std::runtime_error("time falls");
  return event;
}

}  // namespace qv3
