#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <optional>
#include <type_traits>

#include "instrument/instrument.h"
#include "link/commport.h"

namespace qv3 {

/// Tells the instrument everything that happens, together with the time, and wakes it when it has
/// something due. Owns its one wake-up and `tmrClock`; nobody else tells the instrument anything.
class Heartbeat : public QObject {
 public:
  /// All references must outlive this. `clock` tells the time.
  Heartbeat(Instrument& instrument, CommPort& port, std::function<Now()> clock);
  ~Heartbeat() override;

  /// Starts `tmrClock`, which never stops. `minutePassed` hears of every new minute of the hour.
  void start(std::function<void()> minutePassed);

  /// `received` hears of every receive event that was handled, `told` of everything that was told,
  /// once it is done.
  void setAfter(std::function<void(const Now&)> received, std::function<void()> told);

  /// Calls `what(instrument, now)` and returns its answer. Timers due before `now` fire first.
  template <typename What>
  auto tell(What what) {
    const Now now = m_now();
    m_instrument.advance(now);
    if constexpr (std::is_void_v<decltype(what(m_instrument, now))>) {
      what(m_instrument, now);
      arm();
    } else {
      auto answer = what(m_instrument, now);
      arm();
      return answer;
    }
  }

  const Instrument& instrument() const { return m_instrument; }

 private:
  void arm();
  void clockTick();
  void receive();

  Instrument& m_instrument;
  CommPort& m_port;
  std::function<Now()> m_now;
  std::function<void()> m_minutePassed;
  std::function<void(const Now&)> m_received;
  std::function<void()> m_told;
  QTimer m_wakeUp{this};
  std::optional<Instant> m_armedFor;
  QTimer tmrClock{this};
  int m_minute = -1;
};

}  // namespace qv3
