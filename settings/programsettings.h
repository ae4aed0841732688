#pragma once

#include <cstdint>
#include <string>

#include "measure/colour.h"

namespace qv3 {

/// Main window's place in twips (15 a logical pixel). The height is not kept.
struct WindowPlacement {
  std::int16_t left = 0;
  std::int16_t top = 0;
  std::int16_t width = 0;
  /// 0 normal, 1 minimised, 2 maximised.
  std::int16_t state = 0;
};

/// Every preference of the program under the name that it has in the settings file, and what the
/// session config keeps. A fresh one is all zero; SettingsFile fills in the defaults. Nobody is
/// told of a change: who makes one brings about the row's Effect. Texts are UTF-8.
struct ProgramSettings {
  Colour Dial_Color = 0;
  Colour LED_Set_Color = 0;
  Colour LED_BM_Color = 0;
  Colour LED_Lag_Color = 0;
  Colour Panel_Color = 0;
  Colour Background_Color = 0;
  Colour GraphSheet_Color = 0;
  Colour GraphPen_Color = 0;
  Colour GraphGrid_Color = 0;
  Colour MainNeedle_Color = 0;
  std::int16_t ShadowNeedleColor_Index = 0;
  Colour Scale_Color = 0;
  Colour FreezeNeedle_Color = 0;
  Colour Text_Color = 0;

  std::int16_t Needle_Width = 0;
  std::int32_t DialType = 0;
  std::int32_t ScaleType = 0;
  bool RecordVisible = false;
  bool GraphVisible = false;
  std::string GraphHeight_Index;
  std::int32_t ClockType = 0;
  bool ClockLeft = false;
  std::int32_t DateType = 0;

  /// These three count from 1 and are kept as they come; see settings/derived.h.
  std::int16_t SwitchMode_Index = 0;
  std::int16_t DataLag_Index = 0;
  std::int16_t BM_Threshold_Index = 0;
  std::int16_t Freeze_Threshold_Index = 0;
  bool FreezeEnable = false;
  bool NeedleBdEnable = false;
  /// False is Local, true is Remote.
  bool qv3SensorMode = false;

  bool GraphInvert = false;
  std::string GraphPenWidth_Index;
  bool GridX = false;
  bool GridY = false;
  std::string GraphTimescale;
  std::int16_t GraphGain = 0;

  std::string SavePath;
  std::string SavePrefix;
  std::string LoadPath;
  std::int32_t RecordingMode = 0;
  std::int32_t SuffixType = 0;
  std::int16_t SuffixNum = 0;
  bool AudioEnable = false;
  bool RecPromptEnable = false;
  bool TimeDateEnable = false;
  bool PlayLoopEnable = false;

  // The session config's part.
  std::string IniPath;
  /// 0 Off, 1 On, 2 Prompt.
  std::int32_t AutoSaveMode = 0;
  /// 0 is no port.
  std::int16_t ComPort = 0;
  /// 0..63 where it is used; any value may stand here.
  std::int16_t KnobPosition = 0;
  WindowPlacement WindowGeometry;
};

}  // namespace qv3
