#pragma once

#include <functional>
#include <memory>
#include <string>

#include "recording/mediaport.h"
#include "recording/sound/disksoundfiles.h"
#include "recording/sound/lazybackend.h"
#include "recording/sound/wavfile.h"
#include "recording/soundcommands.h"
#include "recording/soundspool.h"

namespace qv3 {

/// The sound device of this machine. The toolkit's sound, which takes more memory than the rest of
/// the program, lies in a module that is loaded when something is recorded or played for the first
/// time; where there is none, or no server, sessions go on in silence.
class SoundMachine final : public SoundSpool {
 public:
  /// `nextSpool` gives the path of the next recording's sound, `timingTrack` is the full path of
  /// "dummy.mp3".
  SoundMachine(std::string timingTrack, std::function<std::string()> nextSpool);
  ~SoundMachine() override;

  MediaPort& media() { return m_commands; }

  std::optional<TakeSound> recorded() const override;
  bool settled() const override { return m_device.isComplete(); }
  std::string failure() const override { return m_device.failure(); }

  /// False if the sound server hangs; the program must then end without waiting for it.
  bool shutDown();

 private:
  DiskSoundFiles m_files;
  LazyBackend m_backend;
  WavFile m_device;
  SoundCommands m_commands;
};

}  // namespace qv3
