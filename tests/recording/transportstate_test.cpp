#include "recording/transportstate.h"

#include <gtest/gtest.h>

#include <functional>

namespace qv3 {
namespace {

using Change = std::function<void(TransportInputs&)>;

TransportInputs live() {
  TransportInputs inputs;
  inputs.programState = 1;
  inputs.SavePath = "/takes/";
  inputs.SavePrefix = "Take_";
  inputs.allowed.record = true;
  inputs.allowed.load = true;
  inputs.allowed.save = true;
  return inputs;
}

TEST(TransportState, SaveButtonSaysWhatItsPressDoes) {
  struct Row {
    bool unsaved;
    std::int32_t saveMode;
    const char* caption;
    SaveUse use;
  };
  for (const Row& row : {Row{false, 1, "Settings", SaveUse::Settings},
                         {false, 2, "Settings", SaveUse::Settings},
                         {true, 1, "Save As", SaveUse::SaveAs},
                         {true, 2, "Save", SaveUse::Save},
                         {true, 3, "Settings", SaveUse::Settings},
                         {true, 4, "Settings", SaveUse::Settings}}) {
    TransportInputs inputs = live();
    inputs.unsaved = row.unsaved;
    inputs.saveMode = row.saveMode;
    const TransportState state = transportState(inputs);
    EXPECT_EQ(state.cmdSave.caption, row.caption);
    EXPECT_EQ(state.saveUse, row.use);
    if (row.use == SaveUse::Settings) {
      EXPECT_EQ(state.cmdSave.toolTip, "Recording Settings");
    }
  }
}

TEST(TransportState, GreyedRecordSaysWhatIsMissing) {
  struct Row {
    const char* name;
    Change change;
    const char* toolTip;
  };
  const Row rows[] = {
      {"ready", [](auto& i) { i.allowed.record = true; }, "Record (R)"},
      {"no meter", [](auto& i) { i.programState = 0; }, "No meter"},
      {"neither", [](auto& i) { i.programState = 0, i.SavePath.clear(); }, "No meter"},
      {"no folder", [](auto& i) { i.SavePath.clear(); }, "Choose a folder in Settings"},
      {"no folder, Auto Save", [](auto& i) { i.SavePath.clear(), i.RecordingMode = 3; },
       "Choose a folder in Settings"},
      {"manual needs none", [](auto& i) { i.SavePath.clear(), i.RecordingMode = 1; }, "Record (R)"},
      {"busy", [](auto& i) { i.programState = 2; }, "Record (R)"},
  };
  for (const Row& row : rows) {
    TransportInputs inputs = live();
    inputs.allowed.record = false;
    row.change(inputs);
    EXPECT_EQ(transportState(inputs).cmdRecord.toolTip, row.toolTip) << row.name;
  }
}

TEST(TransportState, RecordModeLabelTellsWhereRecordingsGo) {
  struct Row {
    const char* name;
    Change change;
    std::optional<RecordModeLabel> label;
  };
  const Row rows[] = {
      {"manual", [](auto& i) { i.RecordingMode = 1; }, RecordModeLabel{"Manual", ""}},
      {"manual, unsaved", [](auto& i) { i.RecordingMode = 1, i.unsaved = true; },
       RecordModeLabel{"Manual", "Buffer"}},
      {"manual, recording", [](auto& i) { i.RecordingMode = 1, i.programState = 3; },
       RecordModeLabel{"Manual", "Buffer"}},
      {"auto name", [](auto& i) { i.RecordingMode = 2; },
       RecordModeLabel{"Auto Name", "/takes/Take_Date__Time"}},
      {"auto save, numbered", [](auto& i) { i.RecordingMode = 3, i.SuffixType = 0; },
       RecordModeLabel{"Auto Save", "/takes/Take_nnn"}},
      {"capture", [](auto& i) { i.RecordingMode = 4; },
       RecordModeLabel{"Capture", "/takes/Take_Date__Time"}},
      {"no such mode", [](auto& i) { i.RecordingMode = 7; }, std::nullopt},
  };
  for (const Row& row : rows) {
    TransportInputs inputs = live();
    row.change(inputs);
    EXPECT_EQ(transportState(inputs).lblRecordMode, row.label) << row.name;
  }
}

TEST(TransportState, CaptionsFollowPlaybackAndLoop) {
  TransportInputs inputs = live();
  EXPECT_EQ(transportState(inputs).cmdPlay.caption, "Play");
  inputs.play = PlayFlag::Playing;
  EXPECT_EQ(transportState(inputs).cmdPlay.caption, "Pause");
  EXPECT_EQ(transportState(inputs).cmdPlay.symbol, TransportSymbol::Pause);
  inputs.play = PlayFlag::Paused;
  EXPECT_EQ(transportState(inputs).cmdPlay.caption, "Play");
  EXPECT_EQ(transportState(inputs).cmdLoop.caption, "Single");
  inputs.PlayLoopEnable = true;
  EXPECT_EQ(transportState(inputs).cmdLoop.caption, "Loop");
  EXPECT_EQ(transportState(inputs).cmdLoad.toolTip, "Open");
}

TEST(TransportState, BarSeeksInPlaybackAndSetsTheRangeOtherwise) {
  TransportInputs inputs = live();
  EXPECT_EQ(transportState(inputs).barUse, BarUse::None);
  inputs.allowed.positionLeft = true;
  EXPECT_EQ(transportState(inputs).barUse, BarUse::Range);
  inputs.programState = 2;
  EXPECT_EQ(transportState(inputs).barUse, BarUse::Seek);
}

TEST(TransportState, RecordModeLabelAndPlayTimeFollowTheProgramState) {
  for (const int programState : {0, 1, 2, 3}) {
    TransportInputs inputs = live();
    inputs.programState = programState;
    const TransportState state = transportState(inputs);
    EXPECT_EQ(state.recordModeEnabled, programState == 1 || programState == 3);
    EXPECT_EQ(state.playTimeRed, programState == 3);
    EXPECT_EQ(state.cmdRecord.lit, programState == 3);
  }
}

}  // namespace
}  // namespace qv3
