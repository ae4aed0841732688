#pragma once

#include "measure/base.h"
#include "measure/bodymotion.h"
#include "measure/filter.h"
#include "measure/meterstate.h"
#include "measure/needle.h"

namespace qv3 {

/// What one sample did besides moving values: the caller paints lamp and read-outs.
struct SampleOutcome {
  bool motionTriggered = false;
  bool motionEnded = false;
  ReadoutChange readouts;
};

/// The chain from a raw reading to needle, base and alerts. Owns what is remembered from sample to
/// sample; the values themselves are in the `MeterState` it was given. Knows no clock: the time of
/// day (seconds, single precision) comes with each sample.
class Measurement {
 public:
  explicit Measurement(MeterState& state) : m_state(state) {}

  /// Smooths the reading and watches it for body motion.
  SampleOutcome processSample(const MeasureSettings& settings, float timeOfDay);

  ReadoutChange Calc_Base(const MeasureSettings& settings) {
    return m_base.Calc_Base(m_state, settings);
  }
  NeedleOutcome Calc_Needle(const MeasureSettings& settings) {
    return m_needle.Calc_Needle(m_state, settings);
  }

  BaseCalculator& base() { return m_base; }
  const BaseCalculator& base() const { return m_base; }

 private:
  void smooth();
  ReadoutChange endBodyMotion(const MeasureSettings& settings);

  MeterState& m_state;
  Filter m_filter;
  BodyMotionDetector m_motion;
  BaseCalculator m_base;
  NeedleCalculator m_needle;
};

}  // namespace qv3
