#include "app/heartbeat.h"

#include <algorithm>
#include <utility>

namespace qv3 {
namespace {

constexpr std::chrono::milliseconds kClockTick{800};
constexpr int kSecondsPerMinute = 60;

}  // namespace

Heartbeat::Heartbeat(Instrument& instrument, CommPort& port, std::function<Now()> clock)
    : m_instrument(instrument), m_port(port), m_now(std::move(clock)) {
  m_wakeUp.setObjectName(QStringLiteral("tmrWakeUp"));
  m_wakeUp.setSingleShot(true);
  m_wakeUp.setTimerType(Qt::PreciseTimer);
  connect(&m_wakeUp, &QTimer::timeout, this, [this] {
    m_armedFor.reset();
    tell([](Instrument&, const Now&) {});
  });
  tmrClock.setObjectName(QStringLiteral("tmrClock"));
  tmrClock.setInterval(kClockTick);
  tmrClock.setTimerType(Qt::PreciseTimer);
  connect(&tmrClock, &QTimer::timeout, this, [this] { clockTick(); });
  m_port.setObserver(
      {[this] { receive(); },
       [this] { tell([](Instrument& meter, const Now& now) { meter.portLost(now); }); }});
}

Heartbeat::~Heartbeat() {
  m_port.setObserver({});
}

void Heartbeat::setAfter(std::function<void(const Now&)> received, std::function<void()> told) {
  m_received = std::move(received);
  m_told = std::move(told);
}

void Heartbeat::receive() {
  tell([this](Instrument& meter, const Now& now) {
    meter.receive(now);
    if (m_received) m_received(now);
  });
}

void Heartbeat::start(std::function<void()> minutePassed) {
  m_minutePassed = std::move(minutePassed);
  tmrClock.start();
}

/// After every call, so mostly for the deadline that it is armed for already.
void Heartbeat::arm() {
  if (m_told) m_told();
  const auto due = m_instrument.nextDeadline();
  if (due == m_armedFor) return;
  m_armedFor = due;
  if (!due) {
    m_wakeUp.stop();
    return;
  }
  const Instant left = std::max(Instant{0}, *due - m_now().steady);
  m_wakeUp.start(std::chrono::ceil<std::chrono::milliseconds>(left));
}

void Heartbeat::clockTick() {
  const bool starting = m_instrument.operation() == Operation::Starting;
  if (starting || m_instrument.programState() == 2) return;
  const int minute = static_cast<int>(m_now().timeOfDay) / kSecondsPerMinute;
  if (minute != m_minute) {
    m_minute = minute;
    m_minutePassed();
  }
  tell([](Instrument& meter, const Now& now) { meter.clockTick(now); });
}

}  // namespace qv3
