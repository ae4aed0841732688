#include "recording/sound/disciplinedclock.h"

#include <algorithm>

namespace qv3 {
namespace {

/// A correction holds until the next observation, but no longer than this.
constexpr double kSlewTime = 0.6;

/// Sound servers tell their latency a few times a second to once in 1.5 s, each time a few
/// milliseconds wrong; so the loop is slow. Its first seconds close the offset that is left after
/// the sound was put in its place.
constexpr double kFastGain = 1.0;
constexpr SoundTime kFastTime{2'000'000};
constexpr double kGain = 0.18;
constexpr double kMostSlew = 0.01;

double seconds(SoundTime time) {
  return std::chrono::duration<double>(time).count();
}

}  // namespace

DisciplinedClock::DisciplinedClock(SoundTime start, double seconds, Corrects corrects)
    : m_since(start), m_seconds(seconds), m_corrects(corrects) {}

double DisciplinedClock::at(SoundTime now) const {
  const std::lock_guard lock(m_mutex);
  return unlocked(now);
}

double DisciplinedClock::unlocked(SoundTime now) const {
  const double passed = seconds(now - m_since);
  return m_seconds + passed + std::min(passed, kSlewTime) * m_slew;
}

void DisciplinedClock::observe(SoundTime now, double error) {
  const std::lock_guard lock(m_mutex);
  if (now < m_since) return;
  if (!m_observed) m_firstObserved = now;
  m_observed = true;
  m_seconds = unlocked(now);
  m_since = now;
  const bool fast = m_corrects == Corrects::Offset && now - m_firstObserved < kFastTime;
  m_slew = std::clamp((fast ? kFastGain : kGain) * error, -kMostSlew, kMostSlew);
}

}  // namespace qv3
