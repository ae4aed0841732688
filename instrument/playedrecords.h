#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instrument/metercore.h"
#include "recording/samplerecord.h"

namespace qv3 {

/// Shows recorded samples on the instrument. What playback overwrites is borrowed at its begin and
/// given back at its end, so that nothing is counted for the way back.
class PlayedRecords {
 public:
  explicit PlayedRecords(MeterCore& core) : m_core(core) {}

  /// Everything that records overwrite, or for a test the knob alone.
  void borrow();
  void borrowKnob();
  void giveBack();

  /// Applies the fields that differ from the record applied last, and moves needle and graph.
  void show(const SampleRecord& record);

  /// The next record applies all its fields: after the start, a seek, a loop.
  void forgetLast() { m_last.reset(); }

  /// The settings with the borrowed ones as they were live, for whatever writes settings meanwhile.
  ProgramSettings liveSettings() const;
  bool liveNeedleTest() const { return m_live ? m_live->NeedleTest : m_core.state.NeedleTest; }

 private:
  struct LiveValues {
    std::int16_t KnobPosition;
    bool FreezeEnable;
    std::int32_t DialType;
    std::int16_t BdAccum;
    std::int16_t BdTenths;
    bool BdRunning;
    std::uint8_t BasePosition;
    std::string BaseText;
    std::string BdText;
    BaseRecord recorded;
    bool NeedleTest;
    bool knobAlone = false;
  };

  void giveBackReadouts();
  void applyTag(const SampleRecord& record);
  void applyReadouts(const SampleRecord& record);
  void applyFlags(const SampleRecord& record);
  void applyLamp(Lamp lamp);

  MeterCore& m_core;
  std::optional<LiveValues> m_live;
  std::optional<SampleRecord> m_last;
};

}  // namespace qv3
