#include "platform/sound/outputstream.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <algorithm>
#include <utility>

#include "platform/sound/steadynow.h"

namespace qv3 {
namespace {

/// The toolkit fills the buffer in pieces of 20 ms. Less than three of them and PulseAudio's
/// prebuffering never ends; more only add to what is lost when the sound moves.
constexpr int kBufferMs = 120;
constexpr std::uint32_t kMostChannels = 8;

/// Asks the feed for whatever the toolkit takes.
class FeedSource final : public QIODevice {
 public:
  explicit FeedSource(std::shared_ptr<PlaybackFeed> feed)
      : m_feed(std::move(feed)), m_channels(m_feed->format().channels) {
    // Buffered, the device would read far ahead.
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
  }

  bool isSequential() const override { return true; }
  bool atEnd() const override { return false; }

 protected:
  qint64 readData(char* data, qint64 length) override {
    const auto frame = static_cast<qint64>(m_channels * sizeof(std::int16_t));
    m_samples.resize(static_cast<std::size_t>(length / frame) * m_channels);
    if (m_samples.empty()) return 0;
    m_feed->fill(steadyNow(), m_samples);
    const auto bytes = std::as_bytes(std::span(m_samples));
    std::transform(bytes.begin(), bytes.end(), data,
                   [](std::byte byte) { return static_cast<char>(byte); });
    return static_cast<qint64>(bytes.size());
  }
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  std::shared_ptr<PlaybackFeed> m_feed;
  std::size_t m_channels;
  std::vector<std::int16_t> m_samples;
};

/// The sink handles events when it is destroyed, so it goes when no slot is under way.
void discard(std::unique_ptr<QObject> object) {
  if (object) object.release()->deleteLater();
}

}  // namespace

OutputStream::OutputStream(std::shared_ptr<PlaybackFeed> feed) : m_feed(std::move(feed)) {}

bool OutputStream::tick(SoundTime now) {
  if (!m_feed->wanted(now)) return false;
  if (m_sink && m_sink->state() == QAudio::StoppedState) close();
  if (!m_sink && m_reopening.isDue(now)) open(now);
  if (m_sink) m_feed->heard(steadyNow(), std::chrono::microseconds(m_sink->processedUSecs()));
  return true;
}

void OutputStream::open(SoundTime now) {
  m_reopening.tried(now);
  const StreamFormat wanted = m_feed->format();
  const QAudioDevice device = QMediaDevices::defaultAudioOutput();
  if (device.isNull() || wanted.channels > kMostChannels) return;
  QAudioFormat format;
  format.setSampleFormat(QAudioFormat::Int16);
  format.setSampleRate(static_cast<int>(wanted.framesPerSecond));
  format.setChannelCount(static_cast<int>(wanted.channels));
  m_feed->streamStarted();
  m_source = std::make_unique<FeedSource>(m_feed);
  m_sink = std::make_unique<QAudioSink>(device, format);
  m_sink->setBufferSize(format.bytesForDuration(kBufferMs * 1000));
  m_sink->start(m_source.get());
}

void OutputStream::close() {
  if (m_sink) m_sink->stop();
  discard(std::move(m_sink));
  discard(std::move(m_source));
}

}  // namespace qv3
