#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/bench.h"

namespace qv3::test {

/// Where the program stands when it is struck.
enum class Under { Nothing, LeadIn, Recording, Taken, Playing };

/// What becomes of what was recorded.
enum class Kept {
  InHand,     ///< it is still there and can be saved elsewhere
  NextStart,  ///< the next start offers it, once the program is killed if it still runs
  BySelf,     ///< the program has ended and has saved it
  Nothing,    ///< there was nothing, and nothing is left of it
  Checked,    ///< `strike` has looked itself
};

/// What the user is told, and how soon.
struct Told {
  std::string box;  ///< empty: nothing
  std::string text;
  int milliseconds = 2000;
};

struct Fault {
  std::string name;
  std::string settings;  ///< of the section [Recording]
  Sound sound = Sound::Off;
  Under under = Under::Recording;
  std::function<void(Bench&)> strike;
  Told told;
  /// What is under way then; nothing where the program has ended.
  std::optional<Operation> then;
  Kept kept = Kept::InHand;
};

using Faults = std::vector<Fault>;

/// More of them, and at more moments, if it may take long.
Faults diskFaults(bool deep);
Faults worldFaults();  ///< sound server, meter, clock, other programs
Faults endFaults(bool deep);

inline constexpr char kManual[] = "RecordingMode=1\r\n";
inline constexpr char kAutoName[] = "RecordingMode=2\r\n";
inline constexpr char kAutoSave[] = "RecordingMode=3\r\n";

}  // namespace qv3::test
