#include "instrument/metercore.h"

#include "measure/sensitivity.h"

namespace qv3 {
namespace {

const char* modeWord(Operation operation, bool meterFound) {
  switch (operation) {
    case Operation::Playing:
    case Operation::Testing:
      return "PLAY";
    case Operation::Paused:
      return "PAUSE";
    case Operation::LeadIn:
    case Operation::Recording:
    case Operation::Stopping:
      return "RECORD";
    case Operation::Starting:
    case Operation::Probing:
      return "";
    default:
      return meterFound ? "LINK" : "";
  }
}

}  // namespace

Lamp lampOf(Colour shown, const ProgramSettings& settings) {
  if (shown == settings.Dial_Color) return Lamp::Off;
  if (shown == settings.LED_Set_Color) return Lamp::Set;
  if (shown == settings.LED_BM_Color) return Lamp::BodyMotion;
  if (shown == settings.LED_Lag_Color) return Lamp::Lag;
  return Lamp::Off;
}

MeterCore::MeterCore(ProgramSettings& programSettings, CommPort& commPort,
                     MeterDisplay& meterDisplay, SoundClock& soundClock)
    : settings(programSettings), port(commPort), display(meterDisplay), sound(soundClock) {
  state.LampColor = settings.Dial_Color;
}

void MeterCore::Draw_Panel() {
  state.Restart = true;
  display.Draw_Panel();
  display.Update_BaseDisplay(state.BaseText);
  Update_BdDisplay();
  state.ModeColor = settings.Text_Color;
  Update_ModeDisplay();
  display.Update_Clock();
  display.Update_SensKnob(settings.KnobPosition);
}

void MeterCore::Update_LED(Colour colour) {
  state.LampColor = colour;
  display.Update_LED(colour);
}

void MeterCore::Update_ModeDisplay() {
  const int shown = programState();
  ModeLine line;
  line.word = modeWord(operation, meterFound);
  line.status = message.empty() ? state.ModeText : message;
  line.colour = state.ModeColor;
  line.audioOff = (shown == 2 || shown == 3) && !settings.AudioEnable;
  display.Update_ModeDisplay(line);
}

void MeterCore::Update_BdDisplay() {
  display.Update_BdDisplay(state.BdText, state.BdRunning);
}

void MeterCore::showStatus(const std::string& text, Colour colour) {
  state.ModeText = text;
  state.ModeColor = colour;
  Update_ModeDisplay();
}

void MeterCore::show(const ReadoutChange& change) {
  if (change.bd) Update_BdDisplay();
  if (change.base) display.Update_BaseDisplay(state.BaseText);
}

MeasureSettings MeterCore::measureSettings() const {
  return {settings.DialType, settings.KnobPosition, BmThreshold, settings.FreezeEnable,
          settings.NeedleBdEnable};
}

void MeterCore::Update_Needle(const Now& now) {
  if (state.Restart) Draw_Panel();
  computeNeedle(now);
  drawNeedle(state.NeedlePosition);
  if (recorder.phase() == Recorder::Phase::Data) record();
  state.Restart = false;
}

void MeterCore::Update_Needle(std::int32_t recordedPosition) {
  if (state.Restart) Draw_Panel();
  drawNeedle(recordedPosition);
  state.Restart = false;
}

void MeterCore::computeNeedle(const Now& now) {
  const MeasureSettings measured = measureSettings();
  show(measurement.Calc_Base(measured));
  const NeedleOutcome outcome = measurement.Calc_Needle(measured);
  switch (outcome.offScale) {
    case OffScale::Above:
      timers.startIfStopped(Timer::tmrFall, now.steady);
      break;
    case OffScale::Below:
      timers.startIfStopped(Timer::tmrRise, now.steady);
      break;
    case OffScale::Within:
      timers.stop(Timer::tmrFall);
      timers.stop(Timer::tmrRise);
      break;
    case OffScale::Unchanged:
      break;
  }
  if (!outcome.set) return;
  timers.start(Timer::tmrLED, now.steady);
  Update_LED(settings.LED_Set_Color);
}

void MeterCore::drawNeedle(std::int32_t position) {
  const Colour colour = state.Frozen ? settings.FreezeNeedle_Color : settings.MainNeedle_Color;
  display.moveNeedle({position, colour, state.Restart});
}

void MeterCore::record() {
  const BaseRecord& base = measurement.base().recorded();
  Recorder::Sample sample;
  sample.reading = state.Reading;
  sample.needleShown = state.NeedlePosition;
  sample.bdTenths = base.BdTenths;
  sample.basePosition = base.BasePosition;
  sample.knobPosition = static_cast<std::uint8_t>(clampKnob(settings.KnobPosition));
  sample.flags = packFlags(lamp(), state.Frozen, state.BdRunning, settings.DialType);
  sample.packetType = static_cast<char>(state.RecordTag);
  sample.sampleCount = state.SampleCount;
  sample.tagCount = state.TagCount;
  recorder.append(sample);
}

void MeterCore::plotGraph() {
  if (settings.GraphVisible) display.Update_Graph(state.Reading);
}

void MeterCore::countTag() {
  ++state.TagCount;
  recorder.markTag();
  display.showTagCount(state.TagCount);
}

}  // namespace qv3
