#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <utility>

#include "instrument/controls.h"
#include "instrument/inputtap.h"
#include "instrument/live.h"
#include "instrument/metercore.h"
#include "instrument/playedrecords.h"

namespace qv3 {

/// The status text in state 0.
inline constexpr const char* kNoMeter = "No Meter";

/// The whole meter without a window, a port or a clock: it is told characters, keys, mouse,
/// settings and the time, and moves the `MeterDisplay` it was given. Single-threaded.
class Instrument {
 public:
  /// All references must outlive the instrument. It starts without a meter.
  Instrument(ProgramSettings& settings, CommPort& port, MeterDisplay& display, SoundClock& sound);

  /// Everything told from now on is told to `tap` too; nullptr takes it away.
  void setTap(InputTap* tap) { m_tap = tap; }

  const MeterState& state() const { return m_core.state; }
  /// What the parts work on, for whoever puts the instrument into a given state.
  MeterCore& core() { return m_core; }
  StreamDecoder& decoder() { return m_live.decoder(); }
  const Recorder& recorder() const { return m_core.recorder; }
  Operation operation() const { return m_core.operation; }
  int programState() const { return m_core.programState(); }
  bool meterFound() const { return m_core.meterFound; }

  /// Every command asks here whether it acts.
  Situation situation() const;
  bool allowed(Command command) const { return qv3::allowed(command, situation()); }

  /// Fires every timer that is due, in order of its due time.
  void advance(const Now& now);
  std::optional<Instant> nextDeadline() const { return m_core.timers.next(); }

  /// Handles receive events for as long as one is due.
  void receive(const Now& now);
  void receiveEvent(const Now& now);
  /// One tick of the 800 ms clock timer: the watchdog.
  void clockTick(const Now& now);
  /// The line went; a recording ends with it.
  void portLost(const Now& now);

  KeyResult keyDown(Key key, const Now& now);
  void keyUp(const Now& now);
  void panelPressed(const Now& now);
  void bdMouse(bool down, const Now& now);
  void knobMouse(double x, double y, int button, const Now& now);

  /// The setting of this key took a value: brings about what its menu item does.
  void settingChanged(std::string_view key, const Now& now);
  void setNeedleTest(bool on, const Now& now);
  /// A sensor item was chosen: sent to the meter, whose next frames set the mark again.
  void chooseSensor(bool remote);
  void Draw_Panel(const Now& now);

  /// Start-up, probing and what comes of them. `threshold` is 5 at start, 6 later.
  void setOperation(Operation operation);
  void showStatus(const std::string& text, Colour colour) { m_core.showStatus(text, colour); }
  void connected(std::size_t threshold, const Now& now);
  void disconnected(const Now& now);

  /// The lead-in: nothing is kept yet. Nothing happens in playback and while recording.
  void startRecording(bool withSound, const Now& now);
  void startData(const SessionStart& start, const Now& now);
  /// Ends a lead-in or a recording here and now.
  void stopRecording(const Now& now);
  /// The same, with the red status that stays where the link was lost.
  void endRecordingByLoss(const Now& now);
  /// Who hears that the meter fell silent, or its line went, in the midst of a recording, and ends
  /// it; while there is none such a recording ends at once.
  void setLinkLost(std::function<void(const Now&)> linkLost) { m_linkLost = std::move(linkLost); }

  /// Borrows the live values and stops the needle's timers.
  void startPlayback(const Now& now);
  /// Shows one recorded sample; nothing outside playback.
  void show(const SampleRecord& record, const Now& now);
  /// The next record shown applies all its fields.
  void forgetLastRecord() { m_played.forgetLast(); }
  /// That, and the needle starts on a fresh face.
  void restartNeedle();
  /// The needle's trace is wiped and the panel drawn afresh, as a loop begins again.
  void restartPicture();
  /// Ends a playback or a test.
  void stopPlayback(const Now& now);

  /// The test mode: the knob is borrowed and stands at 0, the needle goes where it is shown.
  void startTest(const Now& now);
  void showTest(std::int32_t needle);

  /// The records of the recording that ended, to keep.
  RecordBuffer takeRecords() { return m_core.recorder.takeRecords(); }

  /// What the commands of a session depend on.
  void setSessionFlags(bool loaded, bool unsaved);

  /// Puts the instrument straight into a program state, 0..3, with what entering 2 and leaving 2 or
  /// 3 bring; nothing if it is in it. For tools.
  void putInState(int state, const Now& now);

  /// For whatever writes settings: never the borrowed values of a playback.
  ProgramSettings liveSettings() const { return m_played.liveSettings(); }
  /// The needle test as the user chose it, whatever a test mode makes of it meanwhile.
  bool needleTestChosen() const { return m_played.liveNeedleTest(); }

 private:
  void fire(Timer timer, const Now& now);
  enum class End { Asked, LinkLost };

  void enterPlayback(Operation operation, const Now& now);
  void leave(Operation to, End end);
  void endRecording(End end);
  void linkLost(const Now& now);

  MeterCore m_core;
  Live m_live;
  Controls m_controls;
  PlayedRecords m_played;
  InputTap* m_tap = nullptr;
  bool m_sessionLoaded = false;
  bool m_sessionUnsaved = false;
  std::function<void(const Now&)> m_linkLost;
};

}  // namespace qv3
