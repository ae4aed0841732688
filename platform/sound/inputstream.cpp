#include "platform/sound/inputstream.h"

#include <QAudioDevice>
#include <QIODevice>
#include <QMediaDevices>
#include <algorithm>
#include <cstring>

#include "platform/sound/steadynow.h"

namespace qv3 {
namespace {

/// Small fragments tell best when a sound was in the room; at `stop` little of it is on the way.
constexpr int kFragmentMs = 20;

constexpr std::size_t kPiece = 32768;

/// A stream whose device was taken away stays "active" and gives nothing any more.
constexpr SoundTime kDead = std::chrono::seconds{2};

}  // namespace

bool InputStream::tick(SoundTime now) {
  if (m_source && (m_source->state() == QAudio::StoppedState || now - m_heard >= kDead)) close();
  if (m_device) deliver();
  if (!m_feed->wanted(now)) return false;
  if (!m_source && m_reopening.isDue(now)) open(now);
  return true;
}

void InputStream::open(SoundTime now) {
  m_reopening.tried(now);
  const QAudioDevice device = QMediaDevices::defaultAudioInput();
  if (device.isNull()) return;
  const StreamFormat wanted = m_feed->format();
  QAudioFormat format;
  format.setSampleFormat(QAudioFormat::Int16);
  format.setSampleRate(static_cast<int>(wanted.framesPerSecond));
  format.setChannelCount(static_cast<int>(wanted.channels));
  m_source = std::make_unique<QAudioSource>(device, format);
  m_source->setBufferSize(format.bytesForDuration(kFragmentMs * 1000));
  m_feed->streamStarted();
  m_bytes.clear();
  m_heard = now;
  m_device = m_source->start();
}

/// The source handles events when it is destroyed, so it goes when no slot is under way.
void InputStream::close() {
  m_device = nullptr;
  if (!m_source) return;
  m_source->stop();
  m_source.release()->deleteLater();
}

/// All that waits goes together: after a stall only the last of it says when it was in the room.
void InputStream::deliver() {
  bool more = true;
  while (more) {
    const std::size_t kept = m_bytes.size();
    m_bytes.resize(kept + kPiece);
    const qint64 got = m_device->read(m_bytes.data() + kept, static_cast<qint64>(kPiece));
    m_bytes.resize(kept + static_cast<std::size_t>(std::max<qint64>(got, 0)));
    more = m_bytes.size() == kept + kPiece;
  }
  const std::size_t frame = m_feed->format().channels * sizeof(std::int16_t);
  const std::size_t whole = m_bytes.size() - m_bytes.size() % frame;
  if (whole == 0) return;
  m_heard = steadyNow();
  std::vector<std::int16_t> samples(whole / sizeof(std::int16_t));
  std::memcpy(samples.data(), m_bytes.data(), whole);
  m_bytes.erase(m_bytes.begin(), m_bytes.begin() + static_cast<std::ptrdiff_t>(whole));
  m_feed->captured(steadyNow(), samples);
}

}  // namespace qv3
