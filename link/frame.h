#pragma once

#include <cstdint>
#include <string_view>

namespace qv3 {

/// What a complete frame (the characters before a carriage return) means to a meter model.
enum class FrameKind {
  Reading,   ///< `reading` is valid
  Local,     ///< model "31": a reading of the local sensor, scaled
  Remote,    ///< model "31": a reading of the remote sensor
  Fault,     ///< model "31": the meter reports an error
  Ignored,   ///< consumed without effect
  Malformed  ///< length, tag or digits break the model's rule
};

struct Frame {
  FrameKind kind = FrameKind::Ignored;
  std::int32_t reading = 0;  ///< 0..65535
  char recordTag = 'P';      ///< letter kept for the recorder, 'P' or 'O'
  bool switchPressed = false;
};

/// Decodes a frame that is not empty. `model` is the two-character code; an unknown one ignores
/// every frame.
Frame decodeFrame(std::string_view model, std::string_view frame);

}  // namespace qv3
