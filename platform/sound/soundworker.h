#pragma once

#include <QBasicTimer>
#include <QObject>
#include <memory>

#include "platform/sound/inputstream.h"
#include "platform/sound/outputstream.h"

namespace qv3 {

/// What runs in the sound thread: at most one stream out and one in, looked after a hundred times
/// a second while they are wanted.
class SoundWorker final : public QObject {
 public:
  void play(std::shared_ptr<PlaybackFeed> feed);
  void capture(std::shared_ptr<CaptureFeed> feed);
  void tick();
  void end();

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  std::unique_ptr<OutputStream> m_output;
  std::unique_ptr<InputStream> m_input;
  QBasicTimer m_timer;
};

}  // namespace qv3
