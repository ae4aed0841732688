#include "instrument/capture.h"

#include <array>
#include <charconv>
#include <utility>

#include "settings/settingsrows.h"

namespace qv3 {
namespace {

template <typename Number>
std::string number(Number value) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return {text.data(), end};
}

constexpr std::string_view kHexDigits = "0123456789abcdef";

std::string hex(std::uint8_t byte) {
  return {kHexDigits[byte >> 4], kHexDigits[byte & 15]};
}

/// How a byte above 0x7E is written: as the character of that number, for what a line brought, or
/// as it is, for a text in UTF-8.
enum class Above { AsCharacter, AsIs };

/// A JSON string.
std::string quoted(std::string_view bytes, Above aboveAscii = Above::AsIs) {
  std::string text = "\"";
  for (const char c : bytes) {
    const auto byte = static_cast<std::uint8_t>(c);
    if (c == '\r') {
      text += "\\r";
    } else if (byte < 0x20 || c == '"' || c == '\\' ||
               (byte > 0x7E && aboveAscii == Above::AsCharacter)) {
      text += "\\u00" + hex(byte);
    } else {
      text += c;
    }
  }
  return text + '"';
}

const char* word(bool value) {
  return value ? "true" : "false";
}

struct ValueText {
  std::string operator()(bool value) const { return word(value); }
  std::string operator()(std::int32_t value) const { return number(value); }
  std::string operator()(const std::string& value) const { return quoted(value); }
};

std::string valueOf(const ProgramSettings& settings, std::string_view key) {
  const auto value = getSetting(settings, key);
  return value ? std::visit(ValueText{}, *value) : "null";
}

const char* keyName(Key key) {
  constexpr std::array<const char*, 18> kNames = {"Space", "Insert", "Up",    "Down", "C", "Z", "F",
                                                  "B",     "T",      "R",     "S",    "P", "O", "L",
                                                  "<",     ">",      "Shift", "Other"};
  return kNames[static_cast<std::size_t>(key)];
}

}  // namespace

Capture::Capture(std::string path, const ProgramSettings& settings)
    : m_path(std::move(path)), m_settings(settings) {}

std::string Capture::fileName() const {
  return m_connections == 1 ? m_path : m_path + '-' + number(m_connections);
}

void Capture::begin(Instrument& instrument, const Now& now) {
  ++m_connections;
  m_file = std::ofstream(fileName(), std::ios::binary);
  m_began = now.steady;
  m_soundPosition.reset();
  const MeterState& state = instrument.state();
  m_file << "{\"meta\": {\"name\": \"capture\", \"tod_offset\": " << number(now.timeOfDay)
         << "}}\n";
  set(now, "MeterVersion", quoted(state.MeterVersion));
  for (const SettingRow& row : settingsRows()) set(now, row.key, valueOf(m_settings, row.key));
  set(now, "KnobPosition", valueOf(m_settings, "KnobPosition"));
  set(now, "BmOff", word(state.BmOff));
  set(now, "NeedleTest", word(state.NeedleTest));
  set(now, "GoodEvents", number(instrument.decoder().GoodEvents));
  set(now, "ErrorFrames", number(instrument.decoder().ErrorFrames));
  line(now, std::string("\"bdrunning\": ") + word(state.BdRunning));
  set(now, "ModeText", quoted(state.ModeText));
}

void Capture::line(const Now& now, const std::string& members) {
  if (!m_file.is_open() && m_connections == 0) return;
  const double t = std::chrono::duration<double>(now.steady - m_began).count();
  // Flushed line by line: what a crash leaves behind is what is wanted most.
  m_file << "{\"t\": " << number(t) << ", " << members << "}\n" << std::flush;
  if (!m_file && m_failure.empty()) m_failure = "The capture could not be written to " + fileName();
}

void Capture::set(const Now& now, std::string_view name, const std::string& value) {
  line(now, "\"set\": " + quoted(name) + ", \"value\": " + value);
}

void Capture::received(const Now& now, std::string_view characters,
                       std::optional<std::int64_t> soundPosition) {
  if (soundPosition != m_soundPosition) {
    m_soundPosition = soundPosition;
    line(now, "\"audiopos\": " + (soundPosition ? number(*soundPosition) : "null"));
  }
  line(now, "\"rx\": " + quoted(characters, Above::AsCharacter));
}

void Capture::clockTick(const Now& now) {
  line(now, "\"tick\": true");
}

void Capture::keyDown(const Now& now, Key key) {
  line(now, "\"keydown\": " + quoted(keyName(key)));
}

void Capture::keyUp(const Now& now) {
  line(now, "\"keyup\": \"any\"");
}

void Capture::panelPressed(const Now& now) {
  line(now, "\"mouse\": \"panel\"");
}

void Capture::bdMouse(const Now& now, bool down) {
  line(now, std::string("\"bd\": ") + (down ? "\"down\"" : "\"up\""));
}

void Capture::knobMouse(const Now& now, double x, double y, int button) {
  line(now, "\"knob\": [" + number(x) + ", " + number(y) + "], \"button\": " + number(button));
}

void Capture::settingChanged(const Now& now, std::string_view key) {
  set(now, key, valueOf(m_settings, key));
}

void Capture::needleTest(const Now& now, bool on) {
  set(now, "NeedleTest", word(on));
}

void Capture::panelDrawn(const Now& now) {
  line(now, "\"redraw\": true");
}

void Capture::stateChanged(const Now& now, int state) {
  set(now, "State", number(state));
}

void Capture::recordingStarted(const Now& now) {
  line(now, "\"record\": \"start\"");
}

void Capture::dataStarted(const Now& now, const SessionStart& start) {
  line(now, "\"record\": \"data\", \"start\": " + number(start.secondsOfDay) +
                ", \"day\": " + number(start.day));
}

void Capture::recordingStopped(const Now& now) {
  line(now, "\"record\": \"stop\"");
}

void Capture::recordShown(const Now& now, const SampleRecord& record) {
  std::string digits;
  for (const std::uint8_t byte : encode(record)) digits += hex(byte);
  line(now, "\"play\": " + quoted(digits));
}

}  // namespace qv3
