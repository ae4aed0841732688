#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QRadioButton>
#include <set>

#include "tests/app/situations.h"

namespace qv3::test {
namespace {

/// A user who knows the program by the names of its controls alone.
struct WholeWindow : testing::Test {
  ToldProgram rig;

  template <typename Widget = QAbstractButton>
  Widget* control(const char* name) {
    auto* found = rig.window().findChild<Widget*>(QLatin1String(name));
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  void click(const char* name) {
    auto* button = control(name);
    ASSERT_TRUE(button != nullptr && button->isVisible() && button->isEnabled()) << name;
    QTest::mouseClick(button, Qt::LeftButton);
    ToldProgram::turnOver();
  }
  void chooseFile(const char* name, const std::string& path) {
    auto* chooser = rig.dialog<QFileDialog>(name);
    ASSERT_NE(chooser, nullptr) << name;
    ToldProgram::chooseFile(*chooser, path);
  }
  QString text(const char* label) { return control<QWidget>(label)->property("text").toString(); }
};

TEST_F(WholeWindow, AFirstSessionFromTheFirstStartToTheNext) {
  rig.startTold();
  EXPECT_EQ(rig.status(), "No Meter");
  EXPECT_FALSE(control("cmdRecord")->isEnabled());
  rig.trigger("mnuConnectionConnect");
  rig.frames(10);
  EXPECT_EQ(rig.status(), "Input OK");

  rig.trigger("mnuRecAudioOff");
  rig.trigger("mnuRecSettings");
  click("optRecMode_1");
  click("cmdClose");
  ASSERT_EQ(ToldProgram::openDialog(), nullptr);

  click("cmdRecord");
  rig.frames(60);
  ASSERT_EQ(rig.operation(), Operation::Recording);
  rig.frames(100);
  click("cmdStop");
  rig.frames(60);
  ASSERT_EQ(rig.operation(), Operation::None);
  EXPECT_EQ(text("lblLoadedFile"), "Buffer");
  click("cmdSave");
  const std::string path = rig.file("first.qvd");
  chooseFile("dlgSaveRecordingAs", path);
  rig.pass(std::chrono::milliseconds{500});
  ASSERT_EQ(rig.files.contents.count(path), 1U)
      << (ToldProgram::openDialog() ? ToldProgram::openDialog()->objectName().toStdString() : "");
  EXPECT_EQ(rig.files.contents[path].size() % (50 * kRecordSize), 0U) << "whole seconds";
  EXPECT_EQ(text("lblLoadedFile"), "first");

  click("cmdPlay");
  rig.pass(std::chrono::milliseconds{500});
  EXPECT_EQ(rig.operation(), Operation::Playing);
  EXPECT_EQ(rig.status(), "Playback");
  rig.pass(std::chrono::seconds{5});
  EXPECT_EQ(rig.operation(), Operation::None) << "played to its end";

  rig.trigger("mnuSettingsNeedleWidth_7");
  rig.trigger("mnuSaveSettings");
  rig.trigger("mnuExit");
  ASSERT_TRUE(rig.ended);
  rig.ended = false;
  rig.startTold();
  rig.frames(10);
  EXPECT_EQ(rig.status(), "Input OK") << "the port is remembered";
  EXPECT_EQ(rig.settings().Needle_Width, 7);
  EXPECT_EQ(rig.settings().RecordingMode, 1);
}

TEST_F(WholeWindow, EveryMenuItemOnce) {
  rig.plugIn(1, "31");
  rig.leaveConfig(0, 1);
  rig.startTold();
  for (const MenuRow& row : menuRows()) {
    if (!rig.program->handles(row.act) || row.act == Act::Exit) continue;
    const std::string name(row.name);
    QAction* item = rig.item(name.c_str());
    ASSERT_NE(item, nullptr) << name;
    if (!item->isVisible()) continue;
    ASSERT_TRUE(item->isEnabled()) << name;
    item->trigger();
    ToldProgram::turnOver();
    while (QDialog* dialog = ToldProgram::openDialog()) dialog->reject();
    if (rig.operation() == Operation::Testing) rig.trigger("mnuConnTestControl");
    if (!rig.settings().RecordVisible) rig.trigger("mnuViewRecording");
    if (!rig.instrument().meterFound()) rig.trigger("mnuConnectionConnect");
    rig.pass(std::chrono::milliseconds{100});
    EXPECT_EQ(rig.operation(), Operation::None) << name;
    EXPECT_TRUE(rig.instrument().meterFound()) << name;
  }
  rig.trigger("mnuExit");
  EXPECT_TRUE(rig.ended);
}

TEST_F(WholeWindow, EverySettingOfTheMenusIsThereAfterARestart) {
  rig.leaveConfig(0, 0);
  rig.startTold();
  std::set<std::string_view> keys;
  for (const MenuRow& row : menuRows()) {
    if (row.act != Act::Choose && row.act != Act::Toggle) continue;
    if (rig.item(std::string(row.name).c_str())->isEnabled()) rig.program->choose(row);
    keys.insert(row.key);
  }
  rig.trigger("mnuSaveSettings");
  const ProgramSettings before = rig.settings();
  rig.trigger("mnuExit");
  ASSERT_TRUE(rig.ended);
  rig.ended = false;
  rig.startTold();
  for (const std::string_view key : keys) {
    const SettingRow& row = *findSetting(key);
    EXPECT_EQ(textOf(rig.settings(), row), textOf(before, row)) << key;
  }
}

}  // namespace
}  // namespace qv3::test
