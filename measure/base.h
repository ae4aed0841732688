#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "measure/meterstate.h"

namespace qv3 {

/// Which of the two numeric read-outs took a new text.
struct ReadoutChange {
  bool base = false;
  bool bd = false;
};

/// What the recorder and a played record see of the base computation.
struct BaseRecord {
  std::uint8_t BasePosition = 0;
  std::int16_t BdTenths = 0;
};

/// The base step of a reading: 4 for 0, 245 for 65535.
std::uint8_t baseStep(std::int32_t reading);

/// "0.5" to "6.5" in steps of 0.05, as the base display shows a base step.
std::string baseText(std::uint8_t step);

/// "99.9", from 1000 tenths on "100" without a decimal.
std::string bdText(std::int16_t tenths);

/// The base reading and the counter of its downward travel.
class BaseCalculator {
 public:
  BaseCalculator();

  /// Moves base and BD values of `state` on by its `Reading`. On the traditional dial (type 1) only
  /// while the BD counter is enabled or a SET is pending.
  ReadoutChange Calc_Base(MeterState& state, const MeasureSettings& settings);

  /// Accumulator, tenths and text to zero at once; the recorder's copy follows at the next
  /// computation.
  static void zeroBd(MeterState& state);

  /// As the recorder has them: held while body motion keeps the read-outs still.
  const BaseRecord& recorded() const { return m_recorded; }
  void setRecorded(const BaseRecord& recorded) { m_recorded = recorded; }

 private:
  static bool addDrop(MeterState& state, int drop);

  std::array<std::string, 128> m_texts;  ///< by half a base step; formatting is dear at 50 a second
  BaseRecord m_recorded;
};

}  // namespace qv3
