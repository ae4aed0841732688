#include "tools/metersim/core/simulator.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tools/metersim/core/text.h"

namespace qv3::metersim {
namespace {

constexpr std::size_t kLongestHostCommand = 32;

Nanos later(Nanos now, std::optional<Nanos> time) {
  return time ? now + *time : kNever;
}

std::string times(int count, const std::string& what) {
  return std::to_string(count) + " " + what;
}

}  // namespace

Simulator::Simulator(SimulatorConfig config, std::unique_ptr<Signal> signal)
    : m_config(std::move(config)),
      m_signal(std::move(signal)),
      m_meter(m_config.identity),
      m_pacer(m_config.ratePpm),
      m_schedule(std::move(m_config.appointments)),
      m_commands('\r', kLongestHostCommand),
      m_noise(m_config.seed + 1) {}

void Simulator::begin(Nanos now, Effects& effects) {
  switchOn(now);
  advance(now, effects);
}

void Simulator::switchOn(Nanos now) {
  m_lineUp = true;
  m_returnAt = kNever;
  m_commands.clear();
  m_faults.clear();
  m_meter.powerOn();
  if (m_config.autostart) {
    m_meter.unlock();
    m_meter.startStream();
  }
  followStream(now);
}

void Simulator::followStream(Nanos now) {
  if (m_meter.streaming() == m_pacer.running()) return;
  if (m_meter.streaming()) {
    m_pacer.start(now);
    m_schedule.start(now);
  } else {
    m_pacer.stop();
    m_faults.forgetHeld();
  }
}

void Simulator::hear(std::string_view characters, Nanos now, Effects& effects) {
  if (!m_lineUp || m_faults.stalled(now)) return;
  for (const std::string& line : m_commands.feed(characters)) {
    Meter::Answer answer = m_meter.command(line);
    effects.remarks.push_back("heard \"" + escaped(line) + "\": " + answer.remark);
    if (!answer.characters.empty()) effects.chunks.push_back({std::move(answer.characters), false});
    followStream(now);
  }
}

void Simulator::obey(const Command& command, Nanos now, Effects& effects) {
  std::visit([&](const auto& c) { on(c, now, effects); }, command);
}

void Simulator::advance(Nanos now, Effects& effects) {
  if (m_returnAt <= now) on(Return{}, now, effects);
  sendFrames(now, effects);
  for (const Command& command : m_schedule.take(now)) obey(command, now, effects);
}

Nanos Simulator::due() const {
  return std::min({m_pacer.due(), m_schedule.due(), m_returnAt});
}

std::optional<std::uint16_t> Simulator::nextReading(Effects& effects) {
  const auto level = m_signal->next();
  if (!level) {
    if (!std::exchange(m_ended, true)) effects.remarks.push_back("the readings have ended");
    m_finished = m_finished || m_config.quitAtEnd;
    return std::nullopt;
  }
  const double reading = *level + m_events.next();
  return static_cast<std::uint16_t>(
      std::lround(std::clamp<double>(reading, kLowestReading, kHighestReading)));
}

// After a stall of this process only the newest frame goes out: a real meter's line does not keep
// the past either. A wake-up that was merely late loses nothing.
void Simulator::sendFrames(Nanos now, Effects& effects) {
  const int due = m_pacer.take(now);
  const int missed = due > m_config.catchUp ? due - 1 : 0;
  if (missed > 0) effects.remarks.push_back("woke late, lost " + times(missed, "frames"));
  for (int i = 0; i < due; ++i) {
    const auto reading = nextReading(effects);
    if (!reading || i < missed || m_faults.stalled(now)) continue;
    for (std::string& frame : m_faults.pass(m_meter.frame(*reading), now)) {
      effects.chunks.push_back({std::move(frame), true});
    }
  }
}

void Simulator::on(const Garbage& command, Nanos /*now*/, Effects& effects) {
  std::string characters;
  while (static_cast<int>(characters.size()) < command.count) {
    const char c = static_cast<char>(m_noise.whole(0, 255));
    if (c != '\r') characters += c;
  }
  effects.remarks.push_back("garbage: " + escaped(characters));
  if (m_lineUp) effects.chunks.push_back({std::move(characters), false});
}

void Simulator::on(const DropReturns& command, Nanos /*now*/, Effects& effects) {
  m_faults.dropReturns(command.count);
  effects.remarks.push_back(times(command.count, "frames lose their CR"));
}

void Simulator::on(const Burst& command, Nanos /*now*/, Effects& effects) {
  m_faults.holdBack(command.count);
  effects.remarks.push_back("holding back " + times(command.count, "frames"));
}

void Simulator::on(const Stall& command, Nanos now, Effects& effects) {
  m_faults.stall(later(now, command.time));
  effects.remarks.emplace_back("stalls");
}

void Simulator::on(const Resume& /*command*/, Nanos /*now*/, Effects& effects) {
  m_faults.resume();
  effects.remarks.emplace_back("goes on");
}

void Simulator::on(const HangUp& command, Nanos now, Effects& effects) {
  m_lineUp = false;
  ++m_hangUps;
  m_returnAt = later(now, command.time);
  m_pacer.stop();
  effects.chunks.clear();
  effects.remarks.emplace_back("hangs up");
}

void Simulator::on(const Return& /*command*/, Nanos now, Effects& effects) {
  if (m_lineUp) return;
  switchOn(now);
  effects.remarks.emplace_back("is back");
}

void Simulator::on(const ErrorFrames& command, Nanos /*now*/, Effects& effects) {
  m_meter.sendErrorFrames(command.count);
  effects.remarks.push_back(times(command.count, "X frames to come"));
}

void Simulator::on(const Press& /*command*/, Nanos /*now*/, Effects& effects) {
  if (m_meter.press()) {
    effects.remarks.emplace_back("the switch is pressed");
  } else {
    effects.complaints.push_back("press: model " + m_config.identity.model + " has no switch");
  }
}

void Simulator::on(const Send& command, Nanos /*now*/, Effects& effects) {
  effects.remarks.push_back("sends \"" + escaped(command.characters) + "\"");
  if (m_lineUp) effects.chunks.push_back({command.characters, false});
}

void Simulator::on(const ChangeSignal& command, Nanos /*now*/, Effects& effects) {
  SignalResult made = makeSignal(command.spec, m_config.seed, m_config.atEnd);
  if (!made.signal) {
    effects.complaints.push_back("signal: " + made.error);
    return;
  }
  m_signal = std::move(made.signal);
  m_ended = false;
  effects.remarks.emplace_back("another signal");
}

void Simulator::on(const Fall& command, Nanos /*now*/, Effects& effects) {
  m_events.start(command);
  effects.remarks.emplace_back("a fall");
}

void Simulator::on(const Movement& command, Nanos /*now*/, Effects& effects) {
  m_events.start(command);
  effects.remarks.emplace_back("a movement");
}

void Simulator::on(const Quit& /*command*/, Nanos /*now*/, Effects& effects) {
  m_finished = true;
  effects.remarks.emplace_back("ends");
}

}  // namespace qv3::metersim
