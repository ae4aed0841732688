#include "tools/metersim/core/schedule.h"

#include <algorithm>

#include "tools/metersim/core/text.h"

namespace qv3::metersim {

AppointmentResult parseAppointment(std::string_view text, bool repeated) {
  constexpr double kLongest = 1e6;
  const std::size_t colon = text.find(':');
  const auto seconds = toNumber(trimmed(text.substr(0, colon)));
  const double shortest = repeated ? kFrameSeconds : 0;
  if (colon == std::string_view::npos || !seconds || *seconds < shortest || *seconds > kLongest) {
    return {{}, "wants SECONDS:COMMAND, not \"" + escaped(text) + "\""};
  }
  CommandResult parsed = parseCommand(text.substr(colon + 1));
  if (!parsed.error.empty()) return {{}, std::move(parsed.error)};
  if (!parsed.command) return {{}, "names no command"};
  const Nanos time = fromSeconds(*seconds);
  return {{time, repeated ? time : Nanos(0), std::move(*parsed.command)}, {}};
}

void Schedule::start(Nanos now) {
  if (m_started) return;
  m_started = true;
  for (Appointment& appointment : m_appointments) appointment.after += now;
  std::stable_sort(m_appointments.begin(), m_appointments.end(),
                   [](const Appointment& a, const Appointment& b) { return a.after < b.after; });
}

Nanos Schedule::due() const {
  return m_started && !m_appointments.empty() ? m_appointments.front().after : kNever;
}

std::vector<Command> Schedule::take(Nanos now) {
  std::vector<Command> commands;
  std::vector<Appointment> again;
  std::size_t count = 0;
  for (; count < m_appointments.size() && due() != kNever; ++count) {
    Appointment& appointment = m_appointments[count];
    if (appointment.after > now) break;
    commands.push_back(appointment.command);
    if (appointment.every > Nanos(0)) {
      appointment.after += ((now - appointment.after) / appointment.every + 1) * appointment.every;
      again.push_back(appointment);
    }
  }
  m_appointments.erase(m_appointments.begin(), m_appointments.begin() + count);
  m_appointments.insert(m_appointments.end(), again.begin(), again.end());
  std::stable_sort(m_appointments.begin(), m_appointments.end(),
                   [](const Appointment& a, const Appointment& b) { return a.after < b.after; });
  return commands;
}

}  // namespace qv3::metersim
