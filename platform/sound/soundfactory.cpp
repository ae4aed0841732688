#include "platform/sound/soundfactory.h"

#include "platform/sound/soundthread.h"

namespace qv3 {

std::unique_ptr<SoundBackend> makeSoundBackend() {
  return std::make_unique<SoundThread>();
}

}  // namespace qv3
