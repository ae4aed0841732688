#pragma once

#include <memory>

#include "recording/sound/soundbackend.h"

namespace qv3 {

/// The one thing of this library that others use.
std::unique_ptr<SoundBackend> makeSoundBackend();

}  // namespace qv3
