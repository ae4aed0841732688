#pragma once

#include <QAudioSink>
#include <QIODevice>
#include <memory>
#include <vector>

#include "platform/sound/reopening.h"
#include "recording/sound/soundbackend.h"

namespace qv3 {

/// The toolkit's output stream for one feed. It is opened when there is a device and again after a
/// loss, for as long as the feed is wanted.
class OutputStream {
 public:
  explicit OutputStream(std::shared_ptr<PlaybackFeed> feed) : m_feed(std::move(feed)) {}
  OutputStream(const OutputStream&) = delete;
  OutputStream& operator=(const OutputStream&) = delete;
  ~OutputStream() { close(); }

  /// False: the feed is no longer wanted.
  bool tick(SoundTime now);

 private:
  void open(SoundTime now);
  void close();
  void write();

  std::shared_ptr<PlaybackFeed> m_feed;
  std::unique_ptr<QAudioSink> m_sink;
  QIODevice* m_device = nullptr;  ///< belongs to the sink
  std::vector<std::int16_t> m_samples;
  Reopening m_reopening;
};

}  // namespace qv3
