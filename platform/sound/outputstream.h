#pragma once

#include <QAudioSink>
#include <QIODevice>
#include <memory>

#include "platform/sound/reopening.h"
#include "recording/sound/soundbackend.h"

namespace qv3 {

/// The toolkit's output stream for one feed. It is opened when there is a device and again after a
/// loss, for as long as the feed is wanted.
class OutputStream {
 public:
  explicit OutputStream(std::shared_ptr<PlaybackFeed> feed);
  OutputStream(const OutputStream&) = delete;
  OutputStream& operator=(const OutputStream&) = delete;
  ~OutputStream() { close(); }

  /// False: the feed is no longer wanted.
  bool tick(SoundTime now);

 private:
  void open(SoundTime now);
  void close();

  std::shared_ptr<PlaybackFeed> m_feed;
  std::unique_ptr<QIODevice> m_source;
  std::unique_ptr<QAudioSink> m_sink;
  Reopening m_reopening;
};

}  // namespace qv3
