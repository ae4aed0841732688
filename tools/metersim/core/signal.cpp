#include "tools/metersim/core/signal.h"

#include <cmath>

namespace qv3::metersim {
namespace {

/// Counts frames within a period that need not be whole, so that a long run does not drift.
double advance(double& frame, double period) {
  const double now = frame;
  frame += 1;
  if (frame >= period) frame = std::fmod(frame, period);
  return now;
}

}  // namespace

std::optional<double> RampSignal::next() {
  return m_from + (m_to - m_from) * advance(m_frame, m_frames) / m_frames;
}

std::optional<double> SineSignal::next() {
  constexpr double kTurn = 6.283185307179586;
  return m_mean + m_amplitude * std::sin(kTurn * advance(m_frame, m_frames) / m_frames);
}

std::optional<double> StepSignal::next() {
  return advance(m_frame, 2 * m_frames) < m_frames ? m_first : m_second;
}

std::optional<double> ListSignal::next() {
  if (m_index == m_readings.size()) {
    if (m_atEnd == AtEnd::Stop) return std::nullopt;
    if (m_atEnd == AtEnd::Hold) return m_readings.back();
    m_index = 0;
  }
  return m_readings[m_index++];
}

}  // namespace qv3::metersim
