#include <gtest/gtest.h>

#include <set>

#include "settings/settingsrows.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

/// A user who knows the program by the names of its controls alone.
struct WholeWindow : testing::Test {
  ProgramRig rig;

  QString text(const char* label) { return rig.find<QWidget>(label)->property("text").toString(); }
};

TEST_F(WholeWindow, AFirstSessionFromTheFirstStartToTheNext) {
  rig.plugIn(1, "3A");
  rig.start();
  EXPECT_EQ(rig.status(), "No Meter");
  EXPECT_FALSE(rig.find("cmdRecord")->isEnabled());
  rig.trigger("mnuConnectionConnect");
  rig.frames(10);
  EXPECT_EQ(rig.status(), "Input OK");

  rig.trigger("mnuRecAudioOff");
  rig.trigger("mnuRecSettings");
  rig.click("optRecMode_1");
  rig.click("cmdClose");
  ASSERT_EQ(ProgramRig::openDialog(), nullptr);

  rig.click("cmdRecord");
  rig.frames(160);
  ASSERT_EQ(rig.operation(), Operation::Recording);
  rig.click("cmdStop");
  rig.frames(60);
  ASSERT_EQ(rig.operation(), Operation::None);
  EXPECT_EQ(text("lblLoadedFile"), "Buffer");
  rig.click("cmdSave");
  const std::string path = rig.file("first.qvd");
  rig.chooseFile("dlgSaveRecordingAs", path);
  rig.pass(std::chrono::milliseconds{500});
  ASSERT_EQ(rig.files.contents.count(path), 1U);
  EXPECT_EQ(rig.files.contents[path].size() % (50 * kRecordSize), 0U) << "whole seconds";
  EXPECT_EQ(text("lblLoadedFile"), "first");

  rig.click("cmdPlay");
  rig.pass(std::chrono::milliseconds{500});
  EXPECT_EQ(rig.operation(), Operation::Playing);
  EXPECT_EQ(rig.status(), "Playback");
  rig.pass(std::chrono::seconds{5});
  EXPECT_EQ(rig.operation(), Operation::None) << "played to its end";

  rig.trigger("mnuExit");
  ASSERT_TRUE(rig.ended);
  rig.start();
  rig.frames(10);
  EXPECT_EQ(rig.status(), "Input OK") << "the port is remembered";
  EXPECT_EQ(rig.settings().RecordingMode, 1);
}

TEST_F(WholeWindow, EveryMenuItemOnce) {
  rig.startLive({}, "31");
  for (const MenuRow& row : menuRows()) {
    if (!rig.program->handles(row.act) || row.act == Act::Exit) continue;
    if (!rig.item(row.name)->isVisible()) continue;
    rig.trigger(row.name);
    while (QDialog* dialog = ProgramRig::openDialog()) dialog->reject();
    if (rig.operation() == Operation::Testing) rig.trigger("mnuConnTestControl");
    if (!rig.settings().RecordVisible) rig.trigger("mnuViewRecording");
    if (!rig.instrument().meterFound()) rig.trigger("mnuConnectionConnect");
    rig.pass(std::chrono::milliseconds{100});
    EXPECT_EQ(rig.operation(), Operation::None) << row.name;
    EXPECT_TRUE(rig.instrument().meterFound()) << row.name;
  }
  rig.trigger("mnuExit");
  EXPECT_TRUE(rig.ended);
}

TEST_F(WholeWindow, EverySettingOfTheMenusIsThereAfterARestart) {
  rig.start();
  std::set<std::string_view> keys;
  for (const MenuRow& row : menuRows()) {
    if (row.act != Act::Choose && row.act != Act::Toggle) continue;
    if (rig.item(row.name)->isEnabled()) rig.program->choose(row);
    keys.insert(row.key);
  }
  rig.trigger("mnuSaveSettings");
  const ProgramSettings before = rig.settings();
  rig.trigger("mnuExit");
  ASSERT_TRUE(rig.ended);
  rig.start();
  for (const std::string_view key : keys) {
    const SettingRow& row = *findSetting(key);
    EXPECT_EQ(textOf(rig.settings(), row), textOf(before, row)) << key;
  }
}

}  // namespace
}  // namespace qv3::test
