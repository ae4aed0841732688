#include "instrument/live.h"

#include "settings/derived.h"

namespace qv3 {
namespace {

constexpr int kSilentTicks = 2;  // 1.6 to 2.4 s

}  // namespace

Live::Live(MeterCore& core) : m_core(core), m_decoder(core.state, core.port, *this) {}

void Live::receiveEvent(const Now& now) {
  m_noData = false;
  m_core.port.setReceiveThreshold(0);
  if (m_core.programState() == 2) {
    if (m_core.operation == Operation::Testing) m_decoder.syntheticReading(linkSettings());
    drop();
  } else {
    m_decoder.Com_Input_Parse(linkSettings());
    if (m_core.state.NewReading) processSample(now);
  }
  if (m_core.settings.ComPort != 0) m_core.port.setReceiveThreshold(kFrameLength);
}

LinkSettings Live::linkSettings() const {
  const ProgramSettings& settings = m_core.settings;
  return {m_core.LagLimit, settings.LED_Lag_Color, settings.Dial_Color, settings.Text_Color,
          m_core.programState() == 3};
}

void Live::drop() {
  dropReceived();
  m_core.state.NewReading = false;
}

void Live::dropReceived() {
  m_core.port.clearReceived();
  m_decoder.dropCarry();
}

void Live::processSample(const Now& now) {
  const SampleOutcome outcome =
      m_core.measurement.processSample(m_core.measureSettings(), static_cast<float>(now.timeOfDay));
  if (outcome.motionTriggered) m_core.Update_LED(m_core.settings.LED_BM_Color);
  if (outcome.motionEnded) {
    m_core.show(outcome.readouts);
    m_core.lampOff();
  }
  m_core.Update_Needle(now);
  m_core.plotGraph();
}

bool Live::watchdogTick() {
  if (m_core.port.receiveThreshold() == 0) return false;
  m_silentTicks = m_noData ? m_silentTicks + 1 : 0;
  m_noData = true;
  if (m_silentTicks < kSilentTicks) return false;
  m_silentTicks = 0;
  return true;
}

void Live::connected(std::size_t threshold) {
  dropReceived();
  m_core.port.setReceiveThreshold(threshold);
  m_noData = true;
  m_silentTicks = 0;
}

void Live::updateRecordTime() {
  Recorder& recorder = m_core.recorder;
  if (m_core.programState() != 3) {
    recorder.forgetSoundPosition();
    return;
  }
  if (!recorder.withSound()) {
    m_core.display.showRecordTime(m_core.state.SampleCount / 50);
    return;
  }
  if (!m_core.soundPosition || !recorder.takeSoundPosition(*m_core.soundPosition)) return;
  m_core.state.SampleCount = 1;
  m_core.display.showRecordTime(recorder.elapsedSeconds());
}

void Live::switchPressed() {
  if (switchMode(m_core.settings.SwitchMode_Index) == SwitchMode::NeedleSet) {
    m_core.state.SetRequest = true;
  } else {
    m_core.countTag();
  }
}

void Live::sensorReported(bool remote) {
  const SensorMark mark = remote ? SensorMark::Remote : SensorMark::Local;
  if (m_core.sensorMark == mark) return;
  m_core.sensorMark = mark;
  m_core.settings.qv3SensorMode = remote;
  m_core.display.refreshControls();
}

}  // namespace qv3
