#pragma once

#include <csignal>
#include <string>

#include "tools/metersim/controlpipe.h"
#include "tools/metersim/core/options.h"
#include "tools/metersim/core/simulator.h"
#include "tools/metersim/framelog.h"
#include "tools/metersim/serialline.h"

namespace qv3::metersim {

/// Brings the simulator, the line and the control pipe together and waits for what comes first.
class MainLoop {
 public:
  MainLoop(const Options& options, Simulator& simulator);

  /// Opens all that the options name; the error's text, or nothing.
  std::string open();

  /// Until "quit", the end of the readings or a signal; the program's exit status.
  int run();

 private:
  /// Who has something to say.
  struct Ready {
    bool host;
    bool control;
  };

  Ready wait() const;
  void hearControl();
  void hearHost();
  void carryOut(Effects& effects);
  void followLine();
  void announce() const;
  void drain();
  bool toldToStop() const;
  void remark(const std::string& text) const;
  void complain(const std::string& text) const;

  const Options& m_options;
  Simulator& m_simulator;
  sigset_t m_signals{};
  SerialLine m_line;
  ControlPipe m_control;
  FrameLog m_log;
  int m_hangUpsSeen = 0;
  int m_status = 0;
};

}  // namespace qv3::metersim
