#include "measure/measurement.h"

namespace qv3 {

SampleOutcome Measurement::processSample(const MeasureSettings& settings, float timeOfDay) {
  SampleOutcome outcome;
  if (m_state.Restart) m_motion.restart(m_state.Reading);
  smooth();
  const bool moved = m_motion.push(m_state.Reading, settings.BmThreshold);
  if (moved && !m_state.BmOff) {
    outcome.motionTriggered = true;
    if (settings.FreezeEnable) m_state.Frozen = true;
    m_state.BodyMotion = true;
    m_motion.trigger(timeOfDay);
  }
  if (m_state.BodyMotion && m_motion.holdOver(timeOfDay, m_state.BmHoldTime)) {
    outcome.motionEnded = true;
    outcome.readouts = endBodyMotion(settings);
  }
  return outcome;
}

void Measurement::smooth() {
  if (m_state.NeedleTest) {
    m_state.NeedleValue = m_state.Reading;
    return;
  }
  if (m_state.Restart) {
    m_filter.refill(m_state.Reading);
  } else {
    m_filter.push(m_state.Reading);
  }
  m_state.NeedleValue = m_filter.smoothed();
}

ReadoutChange Measurement::endBodyMotion(const MeasureSettings& settings) {
  ReadoutChange change;
  if (settings.DialType == 1) {
    // The base display catches up without a needle SET; a SET still waiting is dropped with it.
    m_state.SetRequest = true;
    change = Calc_Base(settings);
    m_state.SetRequest = false;
  }
  m_state.BodyMotion = false;
  m_state.Frozen = false;
  return change;
}

}  // namespace qv3
