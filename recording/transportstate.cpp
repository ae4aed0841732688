#include "recording/transportstate.h"

#include "recording/naming.h"
#include "recording/recordmodes.h"

namespace qv3 {
namespace {

constexpr int kNoMeter = 0;
constexpr int kLive = 1;
constexpr int kPlayback = 2;
constexpr int kRecording = 3;

/// A greyed Record says what is missing; where nothing is, it is only busy.
std::string_view recordToolTip(const TransportInputs& inputs) {
  const bool automatic =
      inputs.RecordingMode == kAutoNameMode || inputs.RecordingMode == kAutoSaveMode;
  if (!inputs.allowed.record && inputs.programState == kNoMeter) return "No meter";
  if (!inputs.allowed.record && inputs.programState == kLive && automatic &&
      inputs.SavePath.empty())
    return "Choose a folder in Settings";
  return "Record (R)";
}

ButtonState saveButton(const TransportInputs& inputs) {
  const bool enabled = inputs.allowed.save;
  switch (saveUse(inputs.unsaved, inputs.saveMode)) {
    case SaveUse::Save:
      return {enabled, TransportSymbol::Save, "Save", "Save the recording"};
    case SaveUse::SaveAs:
      return {enabled, TransportSymbol::SaveAs, "Save As", "Save Recording As"};
    case SaveUse::Settings:
      break;
  }
  return {enabled, TransportSymbol::Settings, "Settings", "Recording Settings"};
}

ButtonState playButton(const TransportInputs& inputs) {
  const bool enabled = inputs.allowed.play;
  if (inputs.play == PlayFlag::Playing)
    return {enabled, TransportSymbol::Pause, "Pause", "Pause (P)", true};
  return {enabled, TransportSymbol::Play, "Play", "Play (P)", inputs.play == PlayFlag::Paused};
}

ButtonState loopButton(const TransportInputs& inputs) {
  const bool enabled = inputs.allowed.loop;
  if (inputs.PlayLoopEnable) return {enabled, TransportSymbol::Loop, "Loop", "Plays over and over"};
  return {enabled, TransportSymbol::Single, "Single", "Plays once"};
}

BarUse barUse(const TransportInputs& inputs) {
  if (!inputs.allowed.positionLeft) return BarUse::None;
  return inputs.programState == kPlayback ? BarUse::Seek : BarUse::Range;
}

}  // namespace

SaveUse saveUse(bool unsaved, std::int32_t saveMode) {
  if (unsaved && saveMode == kManualMode) return SaveUse::SaveAs;
  return unsaved && saveMode == kAutoNameMode ? SaveUse::Save : SaveUse::Settings;
}

std::optional<RecordModeLabel> recordModeLabel(const TransportInputs& inputs) {
  const std::string target =
      inputs.SavePath + inputs.SavePrefix + std::string(suffixPlaceholder(inputs.SuffixType));
  const bool taken = inputs.programState == kRecording || inputs.unsaved;
  switch (inputs.RecordingMode) {
    case kManualMode:
      return RecordModeLabel{"Manual", taken ? std::string(kBuffer) : ""};
    case kAutoNameMode:
      return RecordModeLabel{"Auto Name", target};
    case kAutoSaveMode:
      return RecordModeLabel{"Auto Save", target};
    case kCaptureMode:
      return RecordModeLabel{"Capture", target};
    default:
      return std::nullopt;
  }
}

TransportState transportState(const TransportInputs& inputs) {
  const TransportAllowed& allowed = inputs.allowed;
  const bool recording = inputs.programState == kRecording;
  TransportState state;
  state.cmdRecord = {allowed.record, TransportSymbol::Record, "Record", recordToolTip(inputs),
                     recording};
  state.cmdStop = {allowed.stop, TransportSymbol::Stop, "Stop", "Stop (S)"};
  state.cmdPlay = playButton(inputs);
  state.cmdRev = {allowed.skip, TransportSymbol::Rev, "Rev", "Skip back (<)"};
  state.cmdFwd = {allowed.skip, TransportSymbol::Fwd, "Fwd", "Skip forward (>)"};
  state.cmdLoop = loopButton(inputs);
  state.cmdLoad = {allowed.load, TransportSymbol::Load, "Load", "Open"};
  state.cmdSave = saveButton(inputs);
  state.recordModeEnabled = inputs.programState == kLive || recording;
  state.lblRecordMode = recordModeLabel(inputs);
  state.saveFileAs = allowed.saveFileAs;
  state.cboFile = allowed.load;
  state.playTimeRed = recording;
  state.saveUse = saveUse(inputs.unsaved, inputs.saveMode);
  state.barUse = barUse(inputs);
  state.wholeRange = allowed.positionRight;
  return state;
}

}  // namespace qv3
