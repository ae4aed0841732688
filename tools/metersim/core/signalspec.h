#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/metersim/core/signal.h"

namespace qv3::metersim {

enum class SignalKind { Skin, Constant, Ramp, Sine, Step, List };

/// A signal as the user names it: "skin", "constant:20000", "ramp:30000:20000:10", "csv:FILE" ...
struct SignalSpec {
  SignalKind kind = SignalKind::Skin;
  std::vector<double> numbers;  ///< as many as the kind takes
  std::string file;             ///< of SignalKind::List
};

struct SignalSpecResult {
  SignalSpec spec;
  std::string error;  ///< empty if the text was good
};

/// Missing numbers take the kind's own values.
SignalSpecResult parseSignalSpec(std::string_view text);

struct ReadingsResult {
  std::vector<std::uint16_t> readings;
  std::string error;  ///< with the line's number; empty if all is well and there is a reading
};

/// One whole number 0..65535 a line; blank lines and lines that begin with "#" do not count.
ReadingsResult parseReadings(std::string_view text);

struct SignalResult {
  std::unique_ptr<Signal> signal;  ///< null with an error
  std::string error;
};

/// Reads the file where the signal is one.
SignalResult makeSignal(const SignalSpec& spec, std::uint64_t seed, AtEnd atEnd);

}  // namespace qv3::metersim
