#pragma once

#include <cstdint>

namespace qv3 {

// The values of `RecordingMode`: how a recording comes to its name, and when it is written.

constexpr std::int32_t kManualMode = 1;    ///< the user is asked for folder and name
constexpr std::int32_t kAutoNameMode = 2;  ///< named by itself, written by Save
constexpr std::int32_t kAutoSaveMode = 3;  ///< named and written by itself
constexpr std::int32_t kCaptureMode = 4;   ///< named by itself, written by "Save File As" alone

}  // namespace qv3
