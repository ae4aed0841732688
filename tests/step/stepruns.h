#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform_sound/pulseserver.h"
#include "tests/step/comparison.h"

namespace qv3::test {

// Whole runs of the program: a session is played, or recorded, and what came of it is compared.
// What keeps a run from coming to its end is thrown.

/// A sound server for such runs, whose clock, and the loudspeaker's with it, runs `ppm` parts in a
/// million faster than the machine's. A process can have but one: the toolkit stays with it.
std::unique_ptr<PulseServer> skewedServer(int ppm);

/// What sees the needle move: made for the window that it looks at, it tells when that was.
using Eye = std::function<std::vector<Moment>()>;
using MakeEye = std::function<Eye(MainWindow& window)>;

struct PlayRun {
  int claps = 0;
  int soundPpm = 0;  ///< of the server's clock
  int meterPpm = 0;  ///< of the recording that is played
  MakeEye eye;
};
Played playSession(PulseServer& server, const PlayRun& run);

struct RecordRun {
  int claps = 0;
  int soundPpm = 0;  ///< of the microphone's clock
  int meterPpm = 0;
};
struct RecordResult {
  Offsets needleToSound;
  double lostSound = 0;  ///< milliseconds, by the server
};
RecordResult recordSession(PulseServer& server, const RecordRun& run);

}  // namespace qv3::test
