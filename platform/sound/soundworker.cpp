#include "platform/sound/soundworker.h"

#include <QTimerEvent>
#include <utility>

#include "platform/sound/steadynow.h"

namespace qv3 {
namespace {

constexpr int kTickMs = 10;

}  // namespace

void SoundWorker::play(std::shared_ptr<PlaybackFeed> feed) {
  m_output.reset();
  m_output = std::make_unique<OutputStream>(std::move(feed));
  m_timer.start(kTickMs, Qt::PreciseTimer, this);
  tick();
}

void SoundWorker::capture(std::shared_ptr<CaptureFeed> feed) {
  m_input.reset();
  m_input = std::make_unique<InputStream>(std::move(feed));
  m_timer.start(kTickMs, Qt::PreciseTimer, this);
  tick();
}

void SoundWorker::tick() {
  if (m_output && !m_output->tick(steadyNow())) m_output.reset();
  if (m_input && !m_input->tick(steadyNow())) m_input.reset();
  if (!m_output && !m_input) m_timer.stop();
}

void SoundWorker::end() {
  m_timer.stop();
  m_output.reset();
  m_input.reset();
}

void SoundWorker::timerEvent(QTimerEvent* event) {
  if (event->timerId() == m_timer.timerId()) tick();
}

}  // namespace qv3
