#pragma once

#include <QString>

#include "measure/colour.h"

namespace qv3 {

/// The settings that the meter panel is drawn by.
struct DialStyle {
  int DialType = 1;
  int ScaleType = 0;
  Colour Panel_Color = 10070316;
  Colour Dial_Color = 16777215;
  Colour Scale_Color = 12615680;
  Colour Text_Color = 0;
  int Needle_Width = 2;  ///< logical pixels; 0 or less is no needle
  bool ClockLeft = false;
};

/// The mode line.
struct ModeReadout {
  QString word;
  QString status;
  Colour colour = 0;
  bool audioOff = false;

  bool operator==(const ModeReadout&) const = default;
};

enum class ClockKind { None, Analogue, TwelveHour, TwentyFourHour };

struct ClockReadout {
  ClockKind kind = ClockKind::None;
  int hour = 0;  ///< 0..23
  int minute = 0;
  QString date;  ///< shown by digital clocks; empty when hidden

  bool operator==(const ClockReadout&) const = default;
};

}  // namespace qv3
