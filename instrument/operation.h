#pragma once

namespace qv3 {

/// What is under way. At most one operation at a time.
enum class Operation {
  None,
  Starting,
  Probing,
  Loading,
  Saving,
  LeadIn,
  Recording,
  Stopping,
  Playing,
  Paused,
  Testing,
  Closing
};

/// What the instrument shows: 0 no meter, 1 live, 2 playback, 3 recording.
constexpr int programState(Operation operation, bool meterFound) {
  switch (operation) {
    case Operation::Playing:
    case Operation::Paused:
    case Operation::Testing:
      return 2;
    case Operation::LeadIn:
    case Operation::Recording:
    case Operation::Stopping:
      return 3;
    default:
      return meterFound ? 1 : 0;
  }
}

}  // namespace qv3
