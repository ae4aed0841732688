#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instrument/session/sessionstate.h"

namespace qv3 {

/// The sound device, opened for a take.
struct OpenedSound {
  std::int32_t unitsPerSecond = 1000;
  bool audible = false;  ///< it plays; else the session's own clock paces it
  std::string error;     ///< the device's text where it could not be opened
};

/// Opens the sound of a take: its wav (or spool) in bytes, its mp3 or, where it was made
/// without sound, the timing track, in milliseconds.
OpenedSound openTakeSound(SessionState& state, const Take& take);

/// Opens the timing track alone. Where it is missing or refused the user is told, and there is
/// nothing.
std::optional<OpenedSound> openTimingTrack(SessionState& state);

}  // namespace qv3
