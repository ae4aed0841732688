#pragma once

#include <array>
#include <cstdint>

#include "tools/metersim/core/random.h"
#include "tools/metersim/core/signal.h"
#include "tools/metersim/core/skinevents.h"

namespace qv3::metersim {

/// A person holding the electrodes: a level that drifts over minutes, breath and pulse, noise,
/// falls of four sizes that recover within seconds, and now and then a movement. At a gain of 1 the
/// needle shows the falls without leaving the dial; at a gain of 3 the large ones leave it.
class SkinSignal : public Signal {
 public:
  explicit SkinSignal(std::uint64_t seed) : m_random(seed) {}
  std::optional<double> next() override;

 private:
  /// A kind of event: how often it comes and how long until the next.
  struct Countdown {
    double mean;    ///< seconds between two
    double pause;   ///< seconds that always lie between two
    double left{};  ///< seconds to the next
  };
  struct FallKind {
    Countdown when;
    double smallest;
    double largest;
    double onset;     ///< the shortest; up to half as long again
    double recovery;  ///< the shortest; up to twice as long
  };

  bool comes(Countdown& countdown);
  double drift();
  void startFall(const FallKind& kind);
  void startMovement();
  double bodyRhythm() const;

  SeededRandom m_random;
  SkinEvents m_events;
  std::array<FallKind, 4> m_falls{{{{5, 1.5}, 120, 600, 0.9, 1.5},
                                   {{16, 5}, 1000, 3200, 1.2, 2.5},
                                   {{75, 30}, 4600, 7500, 1.8, 5},
                                   {{480, 240}, 13000, 15000, 2.4, 9}}};
  Countdown m_movement{50, 15};
  double m_seconds = 0;
  double m_wander = 0;
  double m_drift = 0;
};

}  // namespace qv3::metersim
