#include "instrument/commands.h"

#include <gtest/gtest.h>

#include <string>

namespace qv3 {
namespace {

Situation situationOf(char column) {
  Situation situation;
  situation.meterFound = column != '0';
  situation.sessionLoaded = true;
  situation.savePathChosen = true;
  situation.sensorModel = true;
  switch (column) {
    case 'L':
      situation.operation = Operation::Loading;
      break;
    case 'P':
      situation.operation = Operation::Playing;
      break;
    case 'T':
      situation.operation = Operation::Testing;
      break;
    case 'I':
      situation.operation = Operation::LeadIn;
      break;
    case 'R':
      situation.operation = Operation::Recording;
      break;
    case 'S':
      situation.operation = Operation::Stopping;
      break;
    default:
      break;
  }
  return situation;
}

/// No meter, live, Loading, Playing, Testing, lead-In, Recording, Stopping.
constexpr const char* kColumns = "01LPTIRS";

TEST(Commands, ActInTheirStatesOnly) {
  struct Row {
    Command command;
    std::string states;
  };
  const Row rows[] = {
      {Command::Record, "1"},
      {Command::Stop, "PTR"},
      {Command::Play, "01P"},
      {Command::Skip, "P"},
      {Command::Loop, "P"},
      {Command::Load, "01"},
      {Command::Save, "1"},
      {Command::SaveFileAs, "01"},
      {Command::PositionLeft, "01P"},
      {Command::PositionRight, "01"},
      {Command::Tag, "IRS"},
      {Command::Set, "01LPTIRS"},
      {Command::Knob, "01LPTIRS"},
      {Command::KnobMouse, "01LIRS"},
      {Command::BdKeys, "01LPTIRS"},
      {Command::BdMouse, "01LIRS"},
      {Command::Freeze, "01LIRS"},
      {Command::BodyMotionAlert, "01LPTIRS"},
      {Command::LoadSettings, "01"},
      {Command::SaveSettings, "01LPTIRS"},
      {Command::Connect, "01"},
      {Command::Sensor, "1LPTIRS"},
      {Command::NeedleTest, "01LIRS"},
      {Command::TestMode, "01T"},
      {Command::ViewRecording, "01"},
      {Command::MeterStyle, "01LIRS"},
      {Command::RecordingSetup, "01"},
      {Command::NeedleBdCounter, "01LPTIRS"},
      {Command::Preference, "01LPTIRS"},
      {Command::Exit, "01LPTIRS"},
  };
  for (const Row& row : rows) {
    for (const char* column = kColumns; *column != '\0'; ++column) {
      EXPECT_EQ(allowed(row.command, situationOf(*column)),
                row.states.find(*column) != std::string::npos)
          << static_cast<int>(row.command) << " in " << *column;
    }
  }
}

TEST(Commands, WhileStartingAndProbingOnlyExitActs) {
  for (const Operation operation : {Operation::Starting, Operation::Probing}) {
    Situation situation = situationOf('1');
    situation.operation = operation;
    EXPECT_TRUE(allowed(Command::Exit, situation));
    EXPECT_FALSE(allowed(Command::Set, situation));
    EXPECT_FALSE(allowed(Command::Connect, situation));
    EXPECT_FALSE(allowed(Command::Preference, situation));
  }
  Situation closing = situationOf('1');
  closing.operation = Operation::Closing;
  EXPECT_FALSE(allowed(Command::Exit, closing)) << "a second request is ignored";
}

TEST(Commands, ConditionsBeyondTheState) {
  struct Row {
    const char* what;
    Command command;
    char column;
    void (*change)(Situation&);
    bool acts;
  };
  const Row rows[] = {
      {"an automatic name needs a folder", Command::Record, '1',
       [](Situation& s) { s.savePathChosen = false; }, false},
      {"a manual recording needs none", Command::Record, '1',
       [](Situation& s) { s.savePathChosen = false, s.recordingMode = 1; }, true},
      {"nothing to play", Command::Play, '0', [](Situation& s) { s.sessionLoaded = false; }, false},
      {"what is unsaved can be saved without a meter", Command::Save, '0',
       [](Situation& s) { s.unsaved = true; }, true},
      {"other models have one sensor", Command::Sensor, '1',
       [](Situation& s) { s.sensorModel = false; }, false},
      {"the BD counter belongs to the traditional dial", Command::NeedleBdCounter, '1',
       [](Situation& s) { s.traditionalDial = false; }, false},
      {"hidden panel: no playing", Command::Play, '1',
       [](Situation& s) { s.recordingPanel = false; }, false},
      {"hidden panel: a test can be stopped", Command::Stop, 'T',
       [](Situation& s) { s.recordingPanel = false; }, true},
  };
  for (const Row& row : rows) {
    Situation situation = situationOf(row.column);
    row.change(situation);
    EXPECT_EQ(allowed(row.command, situation), row.acts) << row.what;
  }
}

}  // namespace
}  // namespace qv3
