#include "tools/replay/scriptrunner.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>

#include "recording/sessionfile.h"
#include "settings/settingsrows.h"

namespace qv3 {
namespace {

using nlohmann::json;

constexpr double kDay = 86400;

/// As after start-up with a meter just connected.
ProgramSettings startSettings() {
  ProgramSettings settings;
  for (const SettingRow& row : settingsRows()) setFromText(settings, row, row.defaultText);
  settings.SavePath.clear();
  settings.ComPort = 1;
  return settings;
}

Key keyOf(const std::string& name) {
  static const std::map<std::string, Key> kNames = {
      {"Space", Key::Space}, {"Insert", Key::Insert}, {"Up", Key::Up}, {"Down", Key::Down},
      {"C", Key::C},         {"Z", Key::Z},           {"F", Key::F},   {"B", Key::B},
      {"T", Key::T},         {"Shift", Key::Shift}};
  const auto found = kNames.find(name);
  return found == kNames.end() ? Key::Other : found->second;
}

const char* lampName(Lamp lamp) {
  switch (lamp) {
    case Lamp::Set:
      return "set";
    case Lamp::BodyMotion:
      return "bm";
    case Lamp::Lag:
      return "lag";
    case Lamp::Off:
      break;
  }
  return "off";
}

/// Numbers as their text, so that they are rounded, and refused, as in a file.
SettingValue settingValue(const json& value) {
  if (value.is_boolean()) return value.get<bool>();
  return value.is_number() ? value.dump() : value.get<std::string>();
}

bool flag(const json& value) {
  return value.is_number() ? value != 0 : value.get<bool>();
}

RecordBytes recordOf(const std::string& hex) {
  RecordBytes bytes{};
  if (hex.size() != 2 * kRecordSize ||
      hex.find_first_not_of("0123456789abcdefABCDEF") != hex.npos) {
    throw std::runtime_error("a record is 40 hexadecimal digits");
  }
  for (std::size_t index = 0; index < kRecordSize; ++index) {
    bytes[index] = static_cast<std::uint8_t>(std::stoi(hex.substr(2 * index, 2), nullptr, 16));
  }
  return bytes;
}

}  // namespace

struct ScriptRunner::Entry {
  std::string_view kind;
  Handler handler;
};

const ScriptRunner::Entry ScriptRunner::kHandlers[] = {
    {"meta", &ScriptRunner::meta},           {"rx", &ScriptRunner::rx},
    {"bytes", &ScriptRunner::bytes},         {"set", &ScriptRunner::set},
    {"bdrunning", &ScriptRunner::bdRunning}, {"keyup", &ScriptRunner::keyUp},
    {"keydown", &ScriptRunner::keyDown},     {"key", &ScriptRunner::key},
    {"mouse", &ScriptRunner::mouse},         {"bd", &ScriptRunner::bd},
    {"knob", &ScriptRunner::knob},           {"redraw", &ScriptRunner::redraw},
    {"tick", &ScriptRunner::tick},           {"audiopos", &ScriptRunner::audioPosition},
    {"record", &ScriptRunner::record},       {"play", &ScriptRunner::play},
};

ScriptRunner::ScriptRunner(std::function<void(const nlohmann::ordered_json&)> print)
    : m_print(std::move(print)),
      m_settings(startSettings()),
      m_instrument(m_settings, m_port, m_display, m_sound) {
  constexpr std::size_t kFirstThreshold = 5;
  m_instrument.connected(kFirstThreshold, m_now);
  m_instrument.core().state.ModeText.clear();
}

void ScriptRunner::run(const std::string& line) {
  const ScriptEvent event = parseEvent(line, m_time);
  m_time = event.t;
  m_now.steady = Instant{std::llround(event.t * 1e6)};
  m_now.timeOfDay = std::fmod(m_timeOfDayOffset + event.t, kDay);
  m_instrument.advance(m_now);
  for (const Entry& entry : kHandlers) {
    if (entry.kind == event.kind) (this->*entry.handler)(event);
  }
}

std::vector<std::uint8_t> ScriptRunner::recording() const {
  const Recorder& recorder = m_instrument.recorder();
  return fileBytes(recorder.records(), recorder.sessionStart(),
                   {m_settings.TimeDateEnable, m_settings.ClockType, m_settings.DateType});
}

void ScriptRunner::meta(const ScriptEvent& event) {
  m_timeOfDayOffset = event.fields.at("meta").value("tod_offset", m_timeOfDayOffset);
}

void ScriptRunner::rx(const ScriptEvent& event) {
  m_port.clearReceived();
  m_port.charactersArrived(bytesOf(event.fields.at("rx").get<std::string>()));
  receive(event);
}

void ScriptRunner::bytes(const ScriptEvent& event) {
  m_port.charactersArrived(bytesOf(event.fields.at("bytes").get<std::string>()));
  while (m_port.eventDue()) receive(event);
}

void ScriptRunner::receive(const ScriptEvent& event) {
  m_instrument.receiveEvent(m_now);
  printState(event);
}

void ScriptRunner::set(const ScriptEvent& event) {
  const auto name = event.fields.at("set").get<std::string>();
  const json& value = event.fields.at("value");
  if (setState(name, value)) return;
  if (findSetting(name) == nullptr) throw std::runtime_error("no setting of that name: " + name);
  if (!setSetting(m_settings, name, settingValue(value))) {
    throw std::runtime_error("no value for " + name + ": " + value.dump());
  }
  m_instrument.settingChanged(name, m_now);
}

/// What is no setting but can be put into a state; false for any other name.
bool ScriptRunner::setState(const std::string& name, const json& value) {
  MeterCore& core = m_instrument.core();
  const auto number = [&value] { return value.get<std::int32_t>(); };
  const std::map<std::string, std::function<void()>> setters = {
      {"MeterVersion", [&] { core.state.MeterVersion = value.get<std::string>(); }},
      {"ModeText", [&] { core.state.ModeText = value.get<std::string>(); }},
      {"BmOff", [&] { core.state.BmOff = flag(value); }},
      {"NeedleTest", [&] { core.state.NeedleTest = flag(value); }},
      {"BdRunning", [&] { core.state.BdRunning = flag(value); }},
      {"SetRequest", [&] { core.state.SetRequest = flag(value); }},
      {"Restart", [&] { core.state.Restart = flag(value); }},
      {"State", [&] { setProgramState(number()); }},
      {"LagLimit", [&] { core.LagLimit = number(); }},
      {"BmThreshold", [&] { core.BmThreshold = number(); }},
      {"GoodEvents",
       [&] { m_instrument.decoder().GoodEvents = static_cast<std::int16_t>(number()); }},
      {"ErrorFrames",
       [&] { m_instrument.decoder().ErrorFrames = static_cast<std::int16_t>(number()); }},
  };
  const auto setter = setters.find(name);
  if (setter == setters.end()) return false;
  setter->second();
  return true;
}

void ScriptRunner::setProgramState(int state) {
  if (state < 0 || state > 3) throw std::runtime_error("a state is 0 to 3");
  m_instrument.putInState(state, m_now);
}

void ScriptRunner::bdRunning(const ScriptEvent& event) {
  m_instrument.core().state.BdRunning = event.fields.at("bdrunning").get<bool>();
}

void ScriptRunner::keyUp(const ScriptEvent&) {
  m_instrument.keyUp(m_now);
}

void ScriptRunner::keyDown(const ScriptEvent& event) {
  m_instrument.keyDown(keyOf(event.fields.at("keydown").get<std::string>()), m_now);
}

void ScriptRunner::key(const ScriptEvent& event) {
  m_instrument.keyUp(m_now);
  m_instrument.keyDown(keyOf(event.fields.at("key").get<std::string>()), m_now);
  m_instrument.keyUp(m_now);
}

void ScriptRunner::mouse(const ScriptEvent& event) {
  if (event.fields.at("mouse") != "panel") throw std::runtime_error("the mouse knows the panel");
  m_instrument.panelPressed(m_now);
}

void ScriptRunner::bd(const ScriptEvent& event) {
  const auto action = event.fields.at("bd").get<std::string>();
  if (action != "down" && action != "up") throw std::runtime_error("bd is down or up");
  m_instrument.bdMouse(action == "down", m_now);
}

void ScriptRunner::knob(const ScriptEvent& event) {
  const json& place = event.fields.at("knob");
  m_instrument.knobMouse(place.at(0).get<double>(), place.at(1).get<double>(),
                         event.fields.value("button", 1), m_now);
}

void ScriptRunner::redraw(const ScriptEvent&) {
  m_instrument.Draw_Panel(m_now);
}

void ScriptRunner::tick(const ScriptEvent&) {
  m_instrument.clockTick(m_now);
}

void ScriptRunner::audioPosition(const ScriptEvent& event) {
  const json& value = event.fields.at("audiopos");
  m_sound.answer.reset();
  if (!value.is_null()) m_sound.answer = value.get<std::int64_t>();
}

void ScriptRunner::record(const ScriptEvent& event) {
  const auto step = event.fields.at("record").get<std::string>();
  if (step == "start") {
    m_instrument.startRecording(m_settings.AudioEnable, m_now);
  } else if (step == "data") {
    m_instrument.startData(
        {event.fields.value("start", 0), static_cast<std::uint16_t>(event.fields.value("day", 0))},
        m_now);
  } else if (step == "stop") {
    m_instrument.stopRecording(m_now);
  } else {
    throw std::runtime_error("record is start, data or stop");
  }
}

void ScriptRunner::play(const ScriptEvent& event) {
  m_instrument.show(decode(recordOf(event.fields.at("play").get<std::string>())), m_now);
}

void ScriptRunner::printState(const ScriptEvent& event) {
  const MeterState& state = m_instrument.state();
  nlohmann::ordered_json line;
  line["t"] = event.time;
  line["Reading"] = state.Reading;
  line["NewReading"] = state.NewReading;
  line["NeedleValue"] = state.NeedleValue;
  line["SetPoint"] = state.SetPoint;
  line["NeedlePosition"] = state.NeedlePosition;
  line["BaseText"] = state.BaseText;
  line["BdText"] = state.BdText;
  line["BdTenths"] = state.BdTenths;
  line["BasePosition"] = state.BasePosition;
  line["BodyMotion"] = state.BodyMotion;
  line["Frozen"] = state.Frozen;
  line["LampColor"] = lampName(m_instrument.core().lamp());
  line["ModeText"] = state.ModeText;
  line["GoodEvents"] = m_instrument.decoder().GoodEvents;
  line["ErrorFrames"] = m_instrument.decoder().ErrorFrames;
  m_print(line);
}

}  // namespace qv3
