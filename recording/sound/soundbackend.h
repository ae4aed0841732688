#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "recording/sound/disciplinedclock.h"
#include "recording/sound/soundreader.h"

namespace qv3 {

// What the sound device wants of the toolkit. The feeds are called by one other thread, in which
// the calls to the sound server may wait as long as they like. All sound is 16 bit.

struct StreamFormat {
  std::uint32_t framesPerSecond = 0;
  std::uint32_t channels = 0;
};

/// Sound on its way to the loudspeaker.
class PlaybackFeed {
 public:
  virtual ~PlaybackFeed() = default;

  virtual StreamFormat format() const = 0;
  /// False: it is over, the stream can go.
  virtual bool wanted(SoundTime now) = 0;
  /// A stream was opened, the first or another one after a loss; its frames count from 0.
  virtual void streamStarted() = 0;
  /// The next frames of the stream, which will be heard later.
  virtual void fill(SoundTime now, std::span<std::int16_t> to) = 0;
  /// What the server tells: by now so much of the stream was heard. 0 if it tells nothing.
  virtual void heard(SoundTime now, std::chrono::microseconds stream) = 0;
};

/// Sound on its way from the microphone.
class CaptureFeed {
 public:
  virtual ~CaptureFeed() = default;

  virtual StreamFormat format() const = 0;
  virtual bool wanted(SoundTime now) = 0;
  /// A stream was opened; what comes has no connection with what came before.
  virtual void streamStarted() = 0;
  /// The next whole frames, which have just arrived.
  virtual void captured(SoundTime now, std::span<const std::int16_t> frames) = 0;
};

/// The computer's sound. No call waits for it. Without a sound server, or a device, feeds are
/// simply not called, and are again when there is one.
class SoundBackend {
 public:
  virtual ~SoundBackend() = default;

  /// Takes the place of a feed that is played still.
  virtual void play(std::shared_ptr<PlaybackFeed> feed) = 0;
  virtual void capture(std::shared_ptr<CaptureFeed> feed) = 0;
  /// A feed has changed its mind about being wanted.
  virtual void wake() = 0;

  /// Other than integer PCM: ".mp3", compressed ".wav". Empty if it cannot be decoded.
  virtual std::unique_ptr<SoundReader> openDecoder(const std::string& path) = 0;

  /// No more sound. False if a call hangs in the sound server: the program must then leave by
  /// `_Exit`, since the clean-up of the sound library would wait for the server too.
  [[nodiscard]] virtual bool shutDown() = 0;
};

}  // namespace qv3
