#include "platform/pumpedwait.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <cmath>
#include <utility>

#include "link/tickwait.h"

namespace qv3 {

PumpedWait::PumpedWait(std::function<double()> timeOfDay) : m_timeOfDay(std::move(timeOfDay)) {}

bool PumpedWait::TDelay(int ticks) {
  return wait(ticks * kTickSeconds);
}

bool PumpedWait::wait(double seconds) {
  m_givenUp = false;
  TickWait span(m_timeOfDay(), seconds);
  QTimer end;
  end.setSingleShot(true);
  end.setTimerType(Qt::PreciseTimer);
  while (!m_givenUp) {
    end.start(static_cast<int>(std::ceil(span.remaining() * 1000)));
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (span.over(m_timeOfDay())) break;
  }
  return !m_givenUp;
}

}  // namespace qv3
