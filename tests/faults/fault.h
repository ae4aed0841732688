#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/bench.h"

namespace qv3::test {

/// Where the program stands when it is struck.
enum class Under { Live, LeadIn, Recording, Taken, Playing };

/// What becomes of what was recorded.
enum class Kept {
  InHand,     ///< it is still there and can be saved elsewhere
  NextStart,  ///< the next start offers it, once the program is killed if it still runs
  BySelf,     ///< the program has ended and has saved it
  Gone,       ///< there was nothing, and nothing is left of it
  Checked,    ///< `strike` has looked itself
};

/// So soon the user is told of a write that fails.
inline constexpr int kSoonMs = 2000;

/// What the user is told, and how soon.
struct Told {
  std::string box;  ///< empty: nothing
  std::string text;
  int milliseconds = kSoonMs;
};

/// What is done to the program and the world around it.
using Strike = std::function<void(Bench&)>;

struct Fault {
  std::string name;
  std::string settings;  ///< of the section [Recording]
  Sound sound = Sound::Off;
  Under under = Under::Recording;
  Strike strike{};
  Kept kept = Kept::InHand;
  /// What is under way then; nothing where the program has ended.
  std::optional<Operation> then{};
  Told told{};
};

using Faults = std::vector<Fault>;

/// More of them, and at more moments, if it may take long.
Faults diskFaults(bool deep);
Faults worldFaults();  ///< sound server, meter, clock, other programs
Faults endFaults(bool deep);

// What the tables are made of.
inline constexpr char kManual[] = "RecordingMode=1\r\n";
inline constexpr char kAutoName[] = "RecordingMode=2\r\n";
inline constexpr char kAutoSave[] = "RecordingMode=3\r\n";

inline constexpr Operation kGoesOn = Operation::Recording;
inline constexpr Operation kIdle = Operation::None;

/// One strike after another.
Strike each(std::vector<Strike> strikes);
Strike tell(const char* command);
/// So many samples more are recorded.
Strike samples(int count);
/// The box or dialog of that name opens.
Strike opens(const char* dialog, int milliseconds = kPatienceMs);
/// No file of the program can grow beyond this size.
Strike limitFiles(std::uint64_t bytes);

void killProgram(Bench& bench);
void removeSaveFolder(Bench& bench);

}  // namespace qv3::test
