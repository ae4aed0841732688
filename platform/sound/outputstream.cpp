#include "platform/sound/outputstream.h"

#include <QAudioDevice>
#include <QMediaDevices>
#include <cstring>

#include "platform/sound/steadynow.h"

namespace qv3 {
namespace {

/// Long enough for a busy computer; what is in it cannot be skipped after a stall.
constexpr int kBufferMs = 200;
constexpr std::uint32_t kMostChannels = 8;

}  // namespace

bool OutputStream::tick(SoundTime now) {
  if (!m_feed->wanted(now)) return false;
  if (m_sink && m_sink->state() == QAudio::StoppedState) close();
  if (!m_sink && m_reopening.isDue(now)) open(now);
  if (m_device) {
    m_feed->heard(steadyNow(), std::chrono::microseconds(m_sink->processedUSecs()));
    write();
  }
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
  m_sink = std::make_unique<QAudioSink>(device, format);
  m_sink->setBufferSize(format.bytesForDuration(kBufferMs * 1000));
  m_feed->streamStarted();
  m_device = m_sink->start();
}

/// The sink handles events when it is destroyed, so it goes when no slot is under way.
void OutputStream::close() {
  m_device = nullptr;
  if (!m_sink) return;
  m_sink->stop();
  m_sink.release()->deleteLater();
}

/// Fills the buffer to the last frame. Left to fill it itself, the toolkit does so in whole pieces
/// of 20 ms, and a server that waits for more than they make never begins.
void OutputStream::write() {
  const std::size_t frame = m_feed->format().channels * sizeof(std::int16_t);
  const qsizetype free = m_sink->bytesFree();
  if (free < static_cast<qsizetype>(frame)) return;
  m_samples.resize(static_cast<std::size_t>(free) / frame * m_feed->format().channels);
  m_feed->fill(steadyNow(), m_samples);
  std::vector<char> bytes(m_samples.size() * sizeof(std::int16_t));
  std::memcpy(bytes.data(), m_samples.data(), bytes.size());
  m_device->write(bytes.data(), static_cast<qint64>(bytes.size()));
}

}  // namespace qv3
