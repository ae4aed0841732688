#include "instrument/instrument.h"

#include "instrument/settingeffects.h"

namespace qv3 {

Instrument::Instrument(ProgramSettings& settings, CommPort& port, MeterDisplay& display,
                       SoundClock& sound)
    : m_core(settings, port, display, sound),
      m_live(m_core),
      m_controls(m_core),
      m_played(m_core) {}

Situation Instrument::situation() const {
  const ProgramSettings& settings = m_core.settings;
  Situation situation;
  situation.operation = m_core.operation;
  situation.meterFound = m_core.meterFound;
  situation.sessionLoaded = m_sessionLoaded;
  situation.unsaved = m_sessionUnsaved;
  situation.recordingMode = settings.RecordingMode;
  situation.savePathChosen = !settings.SavePath.empty();
  situation.sensorModel = m_core.meterFound && m_core.state.MeterVersion == "31";
  situation.traditionalDial = settings.DialType == 1;
  situation.recordingPanel = settings.RecordVisible;
  return situation;
}

void Instrument::advance(const Now& now) {
  while (const auto due = m_core.timers.takeDue(now.steady)) {
    fire(due->timer, {due->at, now.timeOfDay});
  }
}

void Instrument::fire(Timer timer, const Now&) {
  switch (timer) {
    case Timer::tmrLED:
      if (!m_core.state.NeedleTest) m_core.lampOff();
      break;
    case Timer::tmrRise:
    case Timer::tmrFall:
      m_core.state.SetRequest = true;
      break;
    case Timer::tmrBdMouseDown:
      m_controls.bdHeld();
      break;
    case Timer::message:
      m_controls.messageOver();
      break;
  }
}

void Instrument::receive(const Now& now) {
  while (m_core.port.eventDue()) receiveEvent(now);
}

void Instrument::receiveEvent(const Now& now) {
  const bool withSound = programState() == 3 && m_core.recorder.withSound();
  m_core.soundPosition = withSound ? m_core.sound.position() : std::nullopt;
  if (m_tap) m_tap->received(now, m_core.port.peek(), m_core.soundPosition);
  m_live.receiveEvent(now);
}

void Instrument::clockTick(const Now& now) {
  if (m_tap) m_tap->clockTick(now);
  if (programState() == 2 || !m_live.watchdogTick()) return;
  if (programState() == 3) linkLost(now);
  // Whoever ends the recording may need a second for it; the error shows at once.
  if (m_core.state.ModeText == "Input OK" || m_core.state.ModeText == "Recording") {
    m_live.decoder().GoodEvents = 0;
    m_core.showStatus("Input Error", kRed);
  }
}

void Instrument::portLost(const Now& now) {
  if (programState() == 3) linkLost(now);
}

void Instrument::linkLost(const Now& now) {
  if (m_linkLost) {
    m_linkLost(now);
  } else {
    endRecording(End::LinkLost);
  }
}

KeyResult Instrument::keyDown(Key key, const Now& now) {
  if (m_tap) m_tap->keyDown(now, key);
  return m_controls.keyDown(key, now);
}

void Instrument::keyUp(const Now& now) {
  if (m_tap) m_tap->keyUp(now);
  m_controls.keyUp();
}

void Instrument::panelPressed(const Now& now) {
  if (!allowed(Command::Set)) return;
  if (m_tap) m_tap->panelPressed(now);
  m_controls.panelPressed();
}

void Instrument::bdMouse(bool down, const Now& now) {
  if (!allowed(Command::BdMouse)) return;
  if (m_tap) m_tap->bdMouse(now, down);
  if (down) {
    m_controls.bdDown(now);
  } else {
    m_controls.bdUp();
  }
}

void Instrument::knobMouse(double x, double y, int button, const Now& now) {
  if (!allowed(Command::KnobMouse)) return;
  if (m_tap) m_tap->knobMouse(now, x, y, button);
  m_controls.knobMouse(x, y, button);
}

void Instrument::settingChanged(std::string_view key, const Now& now) {
  if (m_tap) m_tap->settingChanged(now, key);
  applySettingEffects(m_core, key);
}

void Instrument::setNeedleTest(bool on, const Now& now) {
  if (m_tap) m_tap->needleTest(now, on);
  m_core.state.NeedleTest = on;
  m_core.display.refreshControls();
}

void Instrument::chooseSensor(bool remote) {
  m_core.port.sendCommand(remote ? "SR" : "SL");
  if (!remote && programState() == 1) m_core.showStatus(m_core.state.ModeText);
  m_core.sensorMark = SensorMark::None;
  m_core.display.refreshControls();
}

void Instrument::Draw_Panel(const Now& now) {
  if (m_tap) m_tap->panelDrawn(now);
  m_core.Draw_Panel();
}

void Instrument::setOperation(Operation operation) {
  m_core.operation = operation;
  m_core.Update_ModeDisplay();
  m_core.display.refreshControls();
}

void Instrument::connected(std::size_t threshold, const Now&) {
  m_core.operation = Operation::None;
  m_core.meterFound = true;
  m_live.connected(threshold);
  m_core.state.Restart = true;
  m_core.state.SetRequest = true;
  m_core.showStatus("Input OK");
  m_core.display.refreshControls();
}

void Instrument::disconnected(const Now&) {
  m_core.operation = Operation::None;
  m_core.meterFound = false;
  m_core.port.setReceiveThreshold(0);
  m_live.dropReceived();
  m_core.showStatus(kNoMeter);
  m_core.display.refreshControls();
}

void Instrument::startRecording(bool withSound, const Now& now) {
  if (programState() >= 2) return;
  if (m_tap) m_tap->recordingStarted(now);
  m_core.recorder.start(withSound);
  m_core.state.TagCount = 0;
  m_core.state.SampleCount = 0;
  m_core.state.RecordTag = 'P';
  m_core.operation = Operation::LeadIn;
  m_core.showStatus("Recording");
  m_core.display.refreshControls();
}

void Instrument::startData(const SessionStart& start, const Now& now) {
  if (m_core.operation != Operation::LeadIn) return;
  if (m_tap) m_tap->dataStarted(now, start);
  m_core.operation = Operation::Recording;
  m_core.display.Remove_Needle();
  m_core.recorder.startData(start);
  m_core.state.SampleCount = 0;
  m_core.state.Restart = true;
  m_core.display.refreshControls();
}

void Instrument::stopRecording(const Now& now) {
  if (programState() != 3) return;
  if (m_tap) m_tap->recordingStopped(now);
  endRecording(End::Asked);
}

void Instrument::endRecordingByLoss(const Now& now) {
  if (programState() != 3) return;
  if (m_tap) m_tap->recordingStopped(now);
  endRecording(End::LinkLost);
}

void Instrument::endRecording(End end) {
  m_core.meterFound = true;  // whatever happened to the line, state 1 stays
  leave(Operation::None, end);
}

void Instrument::startPlayback(const Now& now) {
  if (programState() == 2) return;
  m_played.borrow();
  enterPlayback(Operation::Playing, now);
}

void Instrument::startTest(const Now& now) {
  if (programState() >= 2) return;
  m_played.borrowKnob();
  enterPlayback(Operation::Testing, now);
  m_core.state.NeedleTest = true;
  m_core.settings.KnobPosition = 0;
  m_core.lampOff();
  m_core.showStatus("Test Mode");
  m_core.display.Update_SensKnob(0);
}

void Instrument::enterPlayback(Operation operation, const Now& now) {
  if (m_tap) m_tap->stateChanged(now, 2);
  if (programState() == 3) leave(Operation::None, End::Asked);
  m_core.operation = operation;
  for (const Timer timer : {Timer::tmrLED, Timer::tmrRise, Timer::tmrFall, Timer::tmrBdMouseDown}) {
    m_core.timers.stop(timer);
  }
  m_core.Update_ModeDisplay();
  m_core.display.refreshControls();
}

void Instrument::show(const SampleRecord& record, const Now& now) {
  if (programState() != 2) return;
  if (m_tap) m_tap->recordShown(now, record);
  m_played.show(record);
}

void Instrument::showTest(std::int32_t needle) {
  if (m_core.operation != Operation::Testing) return;
  m_core.Update_Needle(needle);
  m_core.state.Reading = needle;
  m_core.plotGraph();
}

void Instrument::restartNeedle() {
  m_played.forgetLast();
  m_core.state.Restart = true;
}

void Instrument::restartPicture() {
  m_core.display.Remove_Needle();
  m_core.Draw_Panel();
}

void Instrument::stopPlayback(const Now& now) {
  if (programState() != 2) return;
  if (m_tap) m_tap->stateChanged(now, m_core.meterFound ? 1 : 0);
  m_played.giveBack();
  leave(Operation::None, End::Asked);
}

void Instrument::setSessionFlags(bool loaded, bool unsaved) {
  m_sessionLoaded = loaded;
  m_sessionUnsaved = unsaved;
  m_core.display.refreshControls();
}

void Instrument::putInState(int state, const Now& now) {
  const int from = programState();
  if (state == from) return;
  if (state < 2) m_core.meterFound = state == 1;
  if (from == 2) {
    stopPlayback(now);
  } else if (from == 3) {
    leave(Operation::None, End::Asked);
  }
  if (state == 2) startPlayback(now);
  if (state == 3) setOperation(Operation::Recording);
}

/// What leaving playback or a recording brings, wherever to.
void Instrument::leave(Operation to, End end) {
  if (programState() == 2) m_live.resetSilence();
  m_core.recorder.end();
  m_core.operation = to;
  m_live.dropReceived();
  m_live.decoder().GoodEvents = 0;
  m_core.state.BodyMotion = false;
  m_core.state.Frozen = false;
  m_core.lampOff();
  m_core.Draw_Panel();
  if (end == End::LinkLost) {
    m_core.showStatus("Input Error", kRed);
  } else {
    m_core.showStatus(m_core.meterFound ? "Input OK" : kNoMeter);
  }
  m_core.display.refreshControls();
}

}  // namespace qv3
