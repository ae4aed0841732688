#pragma once

#include <vector>

#include "tools/metersim/core/command.h"
#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {

/// A command for a moment, counted from the start of the stream, and perhaps again and again.
struct Appointment {
  Nanos after{};
  Nanos every{};  ///< 0: once
  Command command;
};

struct AppointmentResult {
  Appointment appointment;
  std::string error;
};

/// "SECONDS:COMMAND".
AppointmentResult parseAppointment(std::string_view text, bool repeated);

/// Commands that fall due by themselves. Starts with the first stream and runs on through all that
/// follows, hang-ups included.
class Schedule {
 public:
  explicit Schedule(std::vector<Appointment> appointments)
      : m_appointments(std::move(appointments)) {}

  /// Only the first call counts.
  void start(Nanos now);

  /// When the next command is due; kNever before the start and after the last.
  Nanos due() const;

  /// The commands due by `now`, in order of their time, then as they were given. A repeated one
  /// comes once, however late the call.
  std::vector<Command> take(Nanos now);

 private:
  std::vector<Appointment> m_appointments;  ///< after the start `after` is the time itself
  bool m_started = false;
};

}  // namespace qv3::metersim
