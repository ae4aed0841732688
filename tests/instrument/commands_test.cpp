#include "instrument/commands.h"

#include <gtest/gtest.h>

#include <map>
#include <string_view>
#include <vector>

namespace qv3 {
namespace {

/// No meter, live, Loading, Playing, Testing, lead-In, Recording, Stopping.
constexpr std::string_view kColumns = "01LPTIRS";

Situation situationOf(char column) {
  static const std::map<char, Operation> kOperations = {
      {'L', Operation::Loading}, {'P', Operation::Playing},   {'T', Operation::Testing},
      {'I', Operation::LeadIn},  {'R', Operation::Recording}, {'S', Operation::Stopping}};
  Situation situation;
  const auto operation = kOperations.find(column);
  if (operation != kOperations.end()) situation.operation = operation->second;
  situation.meterFound = column != '0';
  situation.sessionLoaded = true;
  situation.savePathChosen = true;
  situation.sensorModel = true;
  return situation;
}

TEST(Commands, ActInTheirStatesOnly) {
  using C = Command;
  const std::map<std::string_view, std::vector<Command>> kStates = {
      {"1", {C::Record, C::Save}},
      {"01",
       {C::Load, C::SaveFileAs, C::PositionRight, C::LoadSettings, C::Connect, C::ViewRecording,
        C::RecordingSetup}},
      {"01P", {C::Play, C::PositionLeft}},
      {"P", {C::Skip, C::Loop}},
      {"PTR", {C::Stop}},
      {"01T", {C::TestMode}},
      {"IRS", {C::Tag}},
      {"1LPTIRS", {C::Sensor}},
      {"01LIRS", {C::KnobMouse, C::BdMouse, C::Freeze, C::NeedleTest, C::MeterStyle}},
      {kColumns,
       {C::Set, C::Knob, C::BdKeys, C::BodyMotionAlert, C::SaveSettings, C::NeedleBdCounter,
        C::Preference, C::Exit}}};
  int commands = 0;
  for (const auto& [states, acting] : kStates) {
    for (const Command command : acting) {
      ++commands;
      for (const char column : kColumns) {
        EXPECT_EQ(allowed(command, situationOf(column)), states.find(column) != states.npos)
            << static_cast<int>(command) << " in " << column;
      }
      for (const Operation waits : {Operation::Starting, Operation::Probing, Operation::Closing}) {
        Situation situation = situationOf('1');
        situation.operation = waits;
        EXPECT_EQ(allowed(command, situation), command == C::Exit && waits != Operation::Closing)
            << static_cast<int>(command);
      }
    }
  }
  EXPECT_EQ(commands, static_cast<int>(Command::Exit) + 1) << "each of them";
}

TEST(Commands, ConditionsBeyondTheState) {
  using S = Situation;
  struct Row {
    const char* what;
    Command command;
    char column;
    bool S::*condition;
    bool value, acts;
    int recordingMode = 2;
  };
  for (const Row& row :
       {Row{"automatic name", Command::Record, '1', &S::savePathChosen, false, false},
        Row{"manual needs no folder", Command::Record, '1', &S::savePathChosen, false, true, 1},
        Row{"nothing to play", Command::Play, '0', &S::sessionLoaded, false, false},
        Row{"unsaved without a meter", Command::Save, '0', &S::unsaved, true, true},
        Row{"one sensor", Command::Sensor, '1', &S::sensorModel, false, false},
        Row{"other dial", Command::NeedleBdCounter, '1', &S::traditionalDial, false, false},
        Row{"hidden panel", Command::Play, '1', &S::recordingPanel, false, false},
        Row{"stop of a test", Command::Stop, 'T', &S::recordingPanel, false, true}}) {
    Situation situation = situationOf(row.column);
    situation.*row.condition = row.value;
    situation.recordingMode = row.recordingMode;
    EXPECT_EQ(allowed(row.command, situation), row.acts) << row.what;
  }
}

}  // namespace
}  // namespace qv3
