#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {

constexpr int kLowestReading = 0;
constexpr int kHighestReading = 65535;

/// What the electrodes measure, one reading a frame. A frame that is never sent takes its reading
/// all the same: the skin does not wait for the line.
class Signal {
 public:
  Signal() = default;
  Signal(const Signal&) = delete;
  Signal& operator=(const Signal&) = delete;
  virtual ~Signal() = default;

  /// The reading of the next frame, 0..65535 as the caller rounds and limits it; nothing once the
  /// signal has ended.
  virtual std::optional<double> next() = 0;
};

class ConstantSignal : public Signal {
 public:
  explicit ConstantSignal(double reading) : m_reading(reading) {}
  std::optional<double> next() override { return m_reading; }

 private:
  double m_reading;
};

/// Straight from one reading to the other in so many seconds, then at once from the start again.
class RampSignal : public Signal {
 public:
  RampSignal(double from, double to, double seconds)
      : m_from(from), m_to(to), m_frames(seconds * kFramesPerSecond) {}
  std::optional<double> next() override;

 private:
  double m_from;
  double m_to;
  double m_frames;
  double m_frame = 0;
};

class SineSignal : public Signal {
 public:
  SineSignal(double mean, double amplitude, double seconds)
      : m_mean(mean), m_amplitude(amplitude), m_frames(seconds * kFramesPerSecond) {}
  std::optional<double> next() override;

 private:
  double m_mean;
  double m_amplitude;
  double m_frames;  ///< of one period
  double m_frame = 0;
};

/// So many seconds at one reading, as many at the other, and so on.
class StepSignal : public Signal {
 public:
  StepSignal(double first, double second, double seconds)
      : m_first(first), m_second(second), m_frames(seconds * kFramesPerSecond) {}
  std::optional<double> next() override;

 private:
  double m_first;
  double m_second;
  double m_frames;
  double m_frame = 0;
};

/// What happens after the last reading of a list.
enum class AtEnd {
  Repeat,
  Hold,  ///< the last reading goes on
  Stop   ///< the meter falls silent
};

/// Readings out of a file, one a frame. Never empty.
class ListSignal : public Signal {
 public:
  ListSignal(std::vector<std::uint16_t> readings, AtEnd atEnd)
      : m_readings(std::move(readings)), m_atEnd(atEnd) {}
  std::optional<double> next() override;

 private:
  std::vector<std::uint16_t> m_readings;
  AtEnd m_atEnd;
  std::size_t m_index = 0;
};

}  // namespace qv3::metersim
