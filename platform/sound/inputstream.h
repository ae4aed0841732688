#pragma once

#include <QAudioSource>
#include <memory>
#include <vector>

#include "platform/sound/reopening.h"
#include "recording/sound/soundbackend.h"

namespace qv3 {

/// The toolkit's input stream for one feed. It is opened when there is a device and again after a
/// loss, for as long as the feed is wanted.
class InputStream {
 public:
  explicit InputStream(std::shared_ptr<CaptureFeed> feed) : m_feed(std::move(feed)) {}
  InputStream(const InputStream&) = delete;
  InputStream& operator=(const InputStream&) = delete;
  ~InputStream() { close(); }

  /// False: the feed is no longer wanted.
  bool tick(SoundTime now);

 private:
  void open(SoundTime now);
  void close();
  void deliver();

  std::shared_ptr<CaptureFeed> m_feed;
  std::unique_ptr<QAudioSource> m_source;
  QIODevice* m_device = nullptr;  ///< belongs to the source
  std::vector<char> m_bytes;      ///< less than a frame, left from the last delivery
  Reopening m_reopening;
  SoundTime m_heard{0};  ///< when something came last
};

}  // namespace qv3
