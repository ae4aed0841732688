#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "instrument/deadlines.h"
#include "instrument/meterdisplay.h"
#include "instrument/now.h"
#include "instrument/operation.h"
#include "link/commport.h"
#include "measure/measurement.h"
#include "recording/recorder.h"
#include "recording/soundclock.h"
#include "settings/programsettings.h"

namespace qv3 {

/// What a lamp of this colour means.
Lamp lampOf(Colour shown, const ProgramSettings& settings);

/// What the parts of the instrument work on together, and the few things that all of them do to it.
/// Owned by `Instrument`; the references outlive it.
class MeterCore {
 public:
  MeterCore(ProgramSettings& programSettings, CommPort& commPort, MeterDisplay& meterDisplay,
            SoundClock& soundClock);

  ProgramSettings& settings;
  CommPort& port;
  MeterDisplay& display;
  SoundClock& sound;

  MeterState state;
  Measurement measurement{state};
  Deadlines timers;
  Recorder recorder;

  Operation operation = Operation::None;
  bool meterFound = false;
  int LagLimit = 2;
  int BmThreshold = 50;
  std::optional<std::int64_t> soundPosition;  ///< of the present receive event, while recording
  std::string message;                        ///< lies over the status text while its timer runs
  SensorMark sensorMark = SensorMark::None;

  int programState() const { return qv3::programState(operation, meterFound); }

  void Draw_Panel();
  void Update_LED(Colour colour);
  void lampOff() { Update_LED(settings.Dial_Color); }
  void Update_ModeDisplay();
  void Update_BdDisplay();
  void showStatus(const std::string& text, Colour colour);
  void showStatus(const std::string& text) { showStatus(text, settings.Text_Color); }
  void show(const ReadoutChange& change);

  /// Computes the needle from the latest reading, moves it, and hands the sample to the recorder.
  void Update_Needle(const Now& now);

  /// Moves the needle to a recorded position; nothing is computed.
  void Update_Needle(std::int32_t recordedPosition);

  void plotGraph();
  void countTag();
  MeasureSettings measureSettings() const;

  Lamp lamp() const { return lampOf(state.LampColor, settings); }

 private:
  void computeNeedle(const Now& now);
  void drawNeedle(std::int32_t position);
  void record();
};

}  // namespace qv3
