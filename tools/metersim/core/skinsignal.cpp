#include "tools/metersim/core/skinsignal.h"

#include <cmath>

namespace qv3::metersim {
namespace {

constexpr double kTurn = 6.283185307179586;

constexpr double kLevel = 26000;         // a base reading of about 3
constexpr double kDriftSize = 900;       // readings, standard deviation
constexpr double kDriftSeconds = 90;     // time constant of the drift
constexpr double kDriftSmoothing = 4;    // seconds; takes the corners off it
constexpr double kRecoveredPart = 0.8;   // of a fall; the rest comes back over a minute
constexpr double kSettlingSeconds = 60;  // time constant of that rest
constexpr double kNoise = 1.0;           // readings, standard deviation

constexpr double kBreathSize = 45;
constexpr double kBreathSeconds = 4.3;
constexpr double kPulseSize = 5;
constexpr double kPulseSeconds = 0.87;

}  // namespace

bool SkinSignal::comes(Countdown& countdown) {
  const bool fresh = m_seconds == 0;
  countdown.left -= kFrameSeconds;
  if (!fresh && countdown.left > 0) return false;
  countdown.left = countdown.pause + m_random.interval(countdown.mean - countdown.pause);
  return !fresh;
}

// A random walk on a spring, smoothed: the walk's own steps would look like movements.
double SkinSignal::drift() {
  const double step = kDriftSize * std::sqrt(2 * kFrameSeconds / kDriftSeconds);
  m_wander += step * m_random.normal() - m_wander * kFrameSeconds / kDriftSeconds;
  m_drift += (m_wander - m_drift) * kFrameSeconds / kDriftSmoothing;
  return m_drift;
}

void SkinSignal::startFall(const FallKind& kind) {
  const double size = m_random.uniform(kind.smallest, kind.largest);
  const double onset = kind.onset * m_random.uniform(1, 1.5);
  const double recovery = kind.recovery * m_random.uniform(1, 2);
  m_events.start(Fall{size * kRecoveredPart, onset, recovery});
  m_events.start(Fall{size * (1 - kRecoveredPart), onset, kSettlingSeconds});
}

void SkinSignal::startMovement() {
  m_events.start(
      Movement{m_random.uniform(500, 1500), m_random.uniform(3, 5), m_random.uniform(0.5, 1.2)});
}

double SkinSignal::bodyRhythm() const {
  return kBreathSize * std::sin(kTurn * m_seconds / kBreathSeconds) +
         kPulseSize * std::sin(kTurn * m_seconds / kPulseSeconds);
}

std::optional<double> SkinSignal::next() {
  for (FallKind& kind : m_falls) {
    if (comes(kind.when)) startFall(kind);
  }
  if (comes(m_movement)) startMovement();
  m_seconds += kFrameSeconds;
  return kLevel + drift() + bodyRhythm() + m_events.next() + kNoise * m_random.normal();
}

}  // namespace qv3::metersim
