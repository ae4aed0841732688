#include "platform/sound/soundthread.h"

#include <utility>

#include "platform/sound/sndfilereader.h"
#include "platform/sound/soundworker.h"

namespace qv3 {
namespace {

constexpr unsigned long kLongestEndMs = 500;

}  // namespace

SoundThread::SoundThread() : m_thread(std::make_unique<QThread>()), m_worker(new SoundWorker) {
  m_thread->setObjectName("sound");
  m_worker->moveToThread(m_thread.get());
  QObject::connect(m_thread.get(), &QThread::finished, m_worker, &QObject::deleteLater);
  m_thread->start();
}

SoundThread::~SoundThread() {
  static_cast<void>(shutDown());
}

bool SoundThread::shutDown() {
  if (!m_thread) return true;
  QMetaObject::invokeMethod(m_worker, [worker = m_worker] { worker->end(); });
  m_thread->quit();
  if (m_thread->wait(kLongestEndMs)) {
    m_thread.reset();
    return true;
  }
  // A running thread object must not be destroyed.
  static_cast<void>(m_thread.release());
  return false;
}

void SoundThread::play(std::shared_ptr<PlaybackFeed> feed) {
  if (!m_thread) return;
  QMetaObject::invokeMethod(m_worker,
                            [worker = m_worker, feed = std::move(feed)] { worker->play(feed); });
}

void SoundThread::capture(std::shared_ptr<CaptureFeed> feed) {
  if (!m_thread) return;
  QMetaObject::invokeMethod(m_worker,
                            [worker = m_worker, feed = std::move(feed)] { worker->capture(feed); });
}

void SoundThread::wake() {
  if (m_thread) QMetaObject::invokeMethod(m_worker, [worker = m_worker] { worker->tick(); });
}

std::unique_ptr<SoundReader> SoundThread::openDecoder(const std::string& path) {
  return SndFileReader::open(path);
}

}  // namespace qv3
