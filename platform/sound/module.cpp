#include "platform/sound/soundfactory.h"

/// What `SoundMachine` resolves by its name.
extern "C" qv3::SoundBackend* qv3MakeSoundBackend() {
  return qv3::makeSoundBackend().release();
}
