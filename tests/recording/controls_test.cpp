#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "recording/setuprules.h"
#include "recording/transportstate.h"

namespace qv3 {
namespace {

/// What the panel shows of a live meter that is changed so.
struct Row {
  const char* name;
  std::function<void(TransportInputs&)> change;
  std::string shown;
};

template <typename Part>
void expectShown(const std::vector<Row>& rows, Part part) {
  for (const Row& row : rows) {
    TransportInputs inputs;
    inputs.programState = 1;
    inputs.SavePath = "/takes/";
    inputs.SavePrefix = "Take_";
    inputs.allowed.load = true;
    inputs.allowed.save = true;
    row.change(inputs);
    EXPECT_EQ(part(transportState(inputs)), row.shown) << row.name;
  }
}

std::string textOf(const ButtonState& key) {
  return std::string(key.caption) + ": " + std::string(key.toolTip);
}

TEST(TransportState, SaveButtonSaysWhatItsPressDoes) {
  const auto unsaved = [](int mode) {
    return [mode](auto& i) { i.unsaved = true, i.saveMode = mode; };
  };
  const std::vector<Row> rows = {
      {"nothing, manual", [](auto& i) { i.saveMode = 1; }, "Settings: Recording Settings"},
      {"nothing, auto name", [](auto& i) { i.saveMode = 2; }, "Settings: Recording Settings"},
      {"manual", unsaved(1), "Save As: Save Recording As"},
      {"auto name", unsaved(2), "Save: Save the recording"},
      {"auto save", unsaved(3), "Settings: Recording Settings"},
      {"capture", unsaved(4), "Settings: Recording Settings"},
  };
  expectShown(rows, [](const auto& state) {
    EXPECT_EQ(state.saveUse == SaveUse::SaveAs, state.cmdSave.caption == "Save As");
    EXPECT_EQ(state.saveUse == SaveUse::Save, state.cmdSave.caption == "Save");
    return textOf(state.cmdSave);
  });
}

TEST(TransportState, GreyedRecordSaysWhatIsMissing) {
  const std::vector<Row> rows = {
      {"ready", [](auto& i) { i.allowed.record = true; }, "Record: Record (R)"},
      {"no meter", [](auto& i) { i.programState = 0; }, "Record: No meter"},
      {"neither", [](auto& i) { i.programState = 0, i.SavePath.clear(); }, "Record: No meter"},
      {"no folder", [](auto& i) { i.SavePath.clear(); }, "Record: Choose a folder in Settings"},
      {"no folder, Auto Save", [](auto& i) { i.SavePath.clear(), i.RecordingMode = 3; },
       "Record: Choose a folder in Settings"},
      {"manual needs none", [](auto& i) { i.SavePath.clear(), i.RecordingMode = 1; },
       "Record: Record (R)"},
      {"busy", [](auto& i) { i.programState = 2; }, "Record: Record (R)"},
  };
  expectShown(rows, [](const auto& state) { return textOf(state.cmdRecord); });
}

TEST(TransportState, RecordModeLabelTellsWhereRecordingsGo) {
  const std::vector<Row> rows = {
      {"manual", [](auto& i) { i.RecordingMode = 1; }, "Manual: "},
      {"unsaved", [](auto& i) { i.RecordingMode = 1, i.unsaved = true; }, "Manual: Buffer"},
      {"recording", [](auto& i) { i.RecordingMode = 1, i.programState = 3; }, "Manual: Buffer"},
      {"auto name", [](auto& i) { i.RecordingMode = 2; }, "Auto Name: /takes/Take_Date__Time"},
      {"numbered", [](auto& i) { i.RecordingMode = 3, i.SuffixType = 0; },
       "Auto Save: /takes/Take_nnn"},
      {"capture", [](auto& i) { i.RecordingMode = 4; }, "Capture: /takes/Take_Date__Time"},
      {"no such mode", [](auto& i) { i.RecordingMode = 7; }, "as it was"},
  };
  expectShown(rows, [](const auto& state) {
    const auto& label = state.lblRecordMode;
    return label ? label->text + ": " + label->toolTip : std::string("as it was");
  });
}

TEST(TransportState, PlaybackLoopAndProgramStateAreShown) {
  const std::vector<Row> rows = {
      {"no meter", [](auto& i) { i.programState = 0; }, "Play, Single, -"},
      {"live", [](auto&) {}, "Play, Single, mode"},
      {"loop", [](auto& i) { i.PlayLoopEnable = true; }, "Play, Loop, mode"},
      {"range", [](auto& i) { i.allowed.positionLeft = true; }, "Play, Single, mode range"},
      {"playing", [](auto& i) { i.programState = 2, i.play = PlayFlag::Playing; },
       "Pause, Single, -"},
      {"paused", [](auto& i) { i.programState = 2, i.play = PlayFlag::Paused; }, "Play, Single, -"},
      {"seek", [](auto& i) { i.programState = 2, i.allowed.positionLeft = true; },
       "Play, Single, - seek"},
      {"recording", [](auto& i) { i.programState = 3; }, "Play, Single, mode lit red"},
  };
  expectShown(rows, [](const TransportState& state) {
    std::string shown = std::string(state.cmdPlay.caption) + ", " +
                        std::string(state.cmdLoop.caption) +
                        (state.recordModeEnabled ? ", mode" : ", -");
    if (state.barUse != BarUse::None) shown += state.barUse == BarUse::Seek ? " seek" : " range";
    if (state.cmdRecord.lit) shown += " lit";
    if (state.playTimeRed) shown += " red";
    return shown;
  });
}

/// The rules by which Recording Setup opens: everything off, then both present options are clicked.
SetupRules opened(bool folder, int mode, int type, int number) {
  SetupRules rules = SetupRules::opened(folder);
  rules.suffixClicked(type, number);
  rules.modeClicked(mode, type == 0, number);
  return rules;
}

TEST(SetupRules, OpenShowsWhatModeAndSuffixNeed) {
  struct Opening {
    const char* name;
    bool folder;
    int mode, type, number;
    SetupRules shown;
  };
  const Opening rows[] = {
      {"manual", true, 1, 0, 7, {true, false, false, true, false}},
      {"manual, no folder", false, 1, 1, 1, {false, false, false, true, false}},
      {"auto name, dated", true, 2, 1, 7, {true, true, false, true, false}},
      {"auto name, first number", true, 2, 0, 1, {true, true, false, true, true}},
      {"auto name, second number", true, 2, 0, 2, {true, true, true, true, true}},
      {"auto save, numbered", true, 3, 0, 2, {true, true, true, false, true}},
      {"auto save, dated", true, 3, 1, 2, {true, true, false, false, false}},
  };
  for (const Opening& row : rows) {
    EXPECT_EQ(opened(row.folder, row.mode, row.type, row.number), row.shown) << row.name;
  }
}

TEST(SetupRules, ClicksOneAfterAnother) {
  SetupRules rules = opened(false, 1, 0, 5);
  struct Click {
    const char* name;
    std::function<void()> click;
    SetupRules shown;
  };
  const Click rows[] = {
      {"no folder", [&] { rules.folderChosen(false); }, {false, false, false, true, false}},
      {"a folder", [&] { rules.folderChosen(true); }, {true, false, false, true, false}},
      {"auto save", [&] { rules.modeClicked(3, true, 5); }, {true, true, true, false, true}},
      {"number is 1", [&] { rules.numberReset(); }, {true, true, false, false, true}},
      {"dated", [&] { rules.suffixClicked(1, 1); }, {true, true, false, false, false}},
      {"auto name", [&] { rules.modeClicked(2, false, 5); }, {true, true, false, true, false}},
      {"numbered", [&] { rules.suffixClicked(0, 5); }, {true, true, true, true, true}},
      {"manual", [&] { rules.modeClicked(1, true, 5); }, {true, false, false, true, false}},
  };
  for (const Click& row : rows) {
    row.click();
    EXPECT_EQ(rules, row.shown) << row.name;
  }
}

}  // namespace
}  // namespace qv3
