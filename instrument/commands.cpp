#include "instrument/commands.h"

#include <array>

namespace qv3 {
namespace {

/// The columns in which a command may act at all.
enum Column : unsigned {
  kNoMeter = 1U << 0,
  kLive = 1U << 1,
  kLoading = 1U << 2,
  kPlaying = 1U << 3,
  kTesting = 1U << 4,
  kLeadIn = 1U << 5,
  kRecording = 1U << 6,
  kStopping = 1U << 7,
  kIdle = kNoMeter | kLive,
  kRecord = kLeadIn | kRecording | kStopping,
  kNotPlayback = kIdle | kLoading | kRecord,
  kAlways = kNotPlayback | kPlaying | kTesting
};

unsigned columnOf(const Situation& situation) {
  switch (situation.operation) {
    case Operation::None:
      return situation.meterFound ? kLive : kNoMeter;
    case Operation::Loading:
    case Operation::Saving:
      return kLoading;
    case Operation::Playing:
    case Operation::Paused:
      return kPlaying;
    case Operation::Testing:
      return kTesting;
    case Operation::LeadIn:
      return kLeadIn;
    case Operation::Recording:
      return kRecording;
    case Operation::Stopping:
      return kStopping;
    case Operation::Starting:
    case Operation::Probing:
    case Operation::Closing:
      return 0;
  }
  return 0;
}

bool always(const Situation&) {
  return true;
}
bool loaded(const Situation& s) {
  return s.sessionLoaded;
}
bool panelShown(const Situation& s) {
  return s.recordingPanel;
}
bool sensorModel(const Situation& s) {
  return s.sensorModel;
}
bool traditionalDial(const Situation& s) {
  return s.traditionalDial;
}
bool meterOrUnsaved(const Situation& s) {
  return s.meterFound || s.unsaved;
}

bool placeToRecord(const Situation& s) {
  const bool automatic = s.recordingMode == 2 || s.recordingMode == 3;
  return s.recordingPanel && (!automatic || s.savePathChosen);
}

bool playable(const Situation& s) {
  if (!s.recordingPanel) return false;
  return s.operation != Operation::None || s.sessionLoaded;
}

struct Rule {
  Command command;
  unsigned columns;
  bool (*condition)(const Situation&);
};

constexpr std::array kRules = {
    Rule{Command::Record, kLive, placeToRecord},
    Rule{Command::Stop, kPlaying | kTesting | kRecording, always},
    Rule{Command::Play, kIdle | kPlaying, playable},
    Rule{Command::Skip, kPlaying, panelShown},
    Rule{Command::Loop, kPlaying, always},
    Rule{Command::Load, kIdle, panelShown},
    Rule{Command::Save, kIdle, meterOrUnsaved},
    Rule{Command::SaveFileAs, kIdle, loaded},
    Rule{Command::PositionLeft, kIdle | kPlaying, playable},
    Rule{Command::PositionRight, kIdle, loaded},
    Rule{Command::Tag, kRecord, always},
    Rule{Command::Set, kAlways, always},
    Rule{Command::Knob, kAlways, always},
    Rule{Command::KnobMouse, kNotPlayback, always},
    Rule{Command::BdKeys, kAlways, always},
    Rule{Command::BdMouse, kNotPlayback, always},
    Rule{Command::Freeze, kNotPlayback, always},
    Rule{Command::BodyMotionAlert, kAlways, always},
    Rule{Command::LoadSettings, kIdle, always},
    Rule{Command::SaveSettings, kAlways, always},
    Rule{Command::Connect, kIdle, always},
    Rule{Command::Sensor, kAlways & ~unsigned{kNoMeter}, sensorModel},
    Rule{Command::NeedleTest, kNotPlayback, always},
    Rule{Command::TestMode, kIdle | kTesting, always},
    Rule{Command::ViewRecording, kIdle, always},
    Rule{Command::MeterStyle, kNotPlayback, always},
    Rule{Command::RecordingSetup, kIdle, always},
    Rule{Command::NeedleBdCounter, kAlways, traditionalDial},
    Rule{Command::Preference, kAlways, always},
};

}  // namespace

bool allowed(Command command, const Situation& situation) {
  if (command == Command::Exit) return situation.operation != Operation::Closing;
  for (const Rule& rule : kRules) {
    if (rule.command != command) continue;
    return (rule.columns & columnOf(situation)) != 0 && rule.condition(situation);
  }
  return false;
}

}  // namespace qv3
