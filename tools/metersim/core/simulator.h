#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/metersim/core/command.h"
#include "tools/metersim/core/framepacer.h"
#include "tools/metersim/core/linefaults.h"
#include "tools/metersim/core/linesplitter.h"
#include "tools/metersim/core/meter.h"
#include "tools/metersim/core/random.h"
#include "tools/metersim/core/schedule.h"
#include "tools/metersim/core/signal.h"
#include "tools/metersim/core/skinevents.h"

namespace qv3::metersim {

/// How the simulated meter is to behave; the signal comes beside it, as its file may not be there.
struct SimulatorConfig {
  MeterIdentity identity;
  std::vector<Appointment> appointments;
  int ratePpm = 0;
  int catchUp = 2;  ///< a wake-up that finds more frames due than this sends the newest alone
  bool autostart = false;
  AtEnd atEnd = AtEnd::Repeat;  ///< of lists of readings
  bool quitAtEnd = false;       ///< ... and then the program ends
  std::uint64_t seed = 1;
};

/// What the simulator wants done, in this order.
struct Effects {
  struct Chunk {
    std::string characters;
    bool frame;  ///< a whole frame of the meter, not an answer or garbage
  };
  std::vector<Chunk> chunks;
  std::vector<std::string> remarks;     ///< for those who want to follow
  std::vector<std::string> complaints;  ///< for everybody
};

/// The meter with its skin, its faults and its timetable. Pure: it is told the time, what the host
/// sent and what the user wants, and says what goes onto the line.
class Simulator {
 public:
  Simulator(SimulatorConfig config, std::unique_ptr<Signal> signal);

  /// The line is there for the first time.
  void begin(Nanos now, Effects& effects);

  /// Characters from the host, in pieces of any size.
  void hear(std::string_view characters, Nanos now, Effects& effects);

  void obey(const Command& command, Nanos now, Effects& effects);

  /// All that is due by now.
  void advance(Nanos now, Effects& effects);

  /// When advance is wanted next; kNever if nothing is coming.
  Nanos due() const;

  /// Whether the line is there; while it is not, neither hear nor chunks mean anything.
  bool lineUp() const { return m_lineUp; }

  /// How often it went. It may have gone and come back within one call.
  int hangUps() const { return m_hangUps; }
  bool finished() const { return m_finished; }

 private:
  void on(const Garbage& command, Nanos now, Effects& effects);
  void on(const DropReturns& command, Nanos now, Effects& effects);
  void on(const Burst& command, Nanos now, Effects& effects);
  void on(const Stall& command, Nanos now, Effects& effects);
  void on(const Resume& command, Nanos now, Effects& effects);
  void on(const HangUp& command, Nanos now, Effects& effects);
  void on(const Return& command, Nanos now, Effects& effects);
  void on(const ErrorFrames& command, Nanos now, Effects& effects);
  void on(const Press& command, Nanos now, Effects& effects);
  void on(const Send& command, Nanos now, Effects& effects);
  void on(const ChangeSignal& command, Nanos now, Effects& effects);
  void on(const Fall& command, Nanos now, Effects& effects);
  void on(const Movement& command, Nanos now, Effects& effects);
  void on(const Quit& command, Nanos now, Effects& effects);

  void switchOn(Nanos now);
  void followStream(Nanos now);
  void sendFrames(Nanos now, Effects& effects);
  std::optional<std::uint16_t> nextReading(Effects& effects);

  SimulatorConfig m_config;
  std::unique_ptr<Signal> m_signal;
  SkinEvents m_events;
  Meter m_meter;
  FramePacer m_pacer;
  LineFaults m_faults;
  Schedule m_schedule;
  LineSplitter m_commands;
  SeededRandom m_noise;
  bool m_lineUp = true;
  int m_hangUps = 0;
  Nanos m_returnAt = kNever;
  bool m_ended = false;  ///< the signal's end was remarked
  bool m_finished = false;
};

}  // namespace qv3::metersim
