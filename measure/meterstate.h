#pragma once

#include <cstdint>
#include <string>

#include "measure/colour.h"

namespace qv3 {

/// The live state that link, processing, displays and recorder share. One instance lives for the
/// whole run, on the user-interface thread only.
struct MeterState {
  std::int32_t Reading = 0;  ///< latest raw reading, 0..65535
  bool NewReading = false;   ///< the last receive event delivered a reading
  std::string MeterVersion;  ///< two-character model code, empty when no meter was identified

  std::int32_t NeedleValue = 0;     ///< smoothed reading
  std::int32_t SetPoint = 0;        ///< smoothed reading at which the needle stands at the SET mark
  std::int32_t NeedlePosition = 0;  ///< dial units, 1/65536 of a turn from straight up
  bool Restart = true;              ///< face freshly drawn: the next needle update re-centres
  bool SetRequest = true;           ///< a SET is wanted at the next needle computation

  bool BodyMotion = false;
  bool Frozen = false;
  bool BmOff = false;       ///< body-motion detection switched off by the user
  float BmHoldTime = 0.5F;  ///< seconds an alert lasts after its last trigger
  bool NeedleTest = false;  ///< needle follows the raw reading
  Colour LampColor = 0;     ///< what the alert lamp shows now

  std::uint8_t BasePosition = 0;  ///< last computed base step
  std::int16_t BdAccum = 0;       ///< accepted base drops, 1/40 base unit, saturating
  std::int16_t BdTenths = 0;
  bool BdRunning = false;
  std::string BaseText = "2.0";
  std::string BdText = "0.0";

  std::string ModeText;  ///< status text of the mode line
  Colour ModeColor = 0;

  std::int16_t RecordTag = 'P';  ///< letter of the last accepted frame, for the recorder
  std::int32_t SampleCount = 0;  ///< frames counted for the recorder
  std::int32_t TagCount = 0;
};

/// The settings that the computation of one sample reads, taken afresh for every sample.
struct MeasureSettings {
  std::int32_t DialType = 1;
  int KnobPosition = 0;  ///< any value; the nearest row of the table counts
  int BmThreshold = 50;
  bool FreezeEnable = false;
  bool NeedleBdEnable = false;
};

constexpr bool isArcDial(std::int32_t dialType) {
  return dialType == 1 || dialType == 2;
}
constexpr bool isRoundDial(std::int32_t dialType) {
  return dialType == 0 || dialType == 3;
}

}  // namespace qv3
