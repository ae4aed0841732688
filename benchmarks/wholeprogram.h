#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "app/machine.h"

namespace qv3::bench {

/// The program as users run it, with its own files, sound and window, but for a meter; driven by
/// its buttons.
class WholeProgram {
 public:
  /// `home` is its state folder, with the settings that it is to have.
  explicit WholeProgram(const std::string& home);

  /// Loads a data file by the Load button and its dialog. `chosen` is called in the moment in which
  /// the dialog is answered.
  void load(const std::string& path, const std::function<void()>& chosen = {});
  void press(const char* button);

  Program& program() { return m_machine.program(); }
  bool doing(Operation operation);

 private:
  Machine m_machine;
};

/// Runs events until it is so; the process waits for them and takes no time.
void runUntil(const std::function<bool()>& reached);
void runFor(std::chrono::milliseconds time);

}  // namespace qv3::bench
