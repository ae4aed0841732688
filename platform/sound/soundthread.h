#pragma once

#include <QThread>
#include <memory>
#include <string>

#include "recording/sound/soundbackend.h"

namespace qv3 {

class SoundWorker;

/// The computer's sound through the toolkit. Its objects live in one thread of their own, since
/// their calls can wait for the sound server as long as that likes; what is asked for is posted to
/// it. Needs an application object, but no event loop in the thread that uses it. One in a program:
/// the toolkit's connection to the server belongs to the thread that used it first.
class SoundThread final : public SoundBackend {
 public:
  SoundThread();
  SoundThread(const SoundThread&) = delete;
  SoundThread& operator=(const SoundThread&) = delete;
  /// Waits for the thread a moment. One that hangs in the server is left behind.
  ~SoundThread() override;

  void play(std::shared_ptr<PlaybackFeed> feed) override;
  void capture(std::shared_ptr<CaptureFeed> feed) override;
  void wake() override;
  std::unique_ptr<SoundReader> openDecoder(const std::string& path) override;
  bool shutDown() override;

 private:
  std::unique_ptr<QThread> m_thread;
  SoundWorker* m_worker;  ///< lives and dies in the thread
};

}  // namespace qv3
