#include <gtest/gtest.h>

#include <QFileDialog>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

void answerFile(ProgramRig& rig, const char* name, const std::string& path) {
  ASSERT_TRUE(rig.opens(name)) << name;
  auto* dialog = rig.dialog<QFileDialog>(name);
  dialog->selectFile(QString::fromStdString(path));
  static_cast<QDialog*>(dialog)->accept();
}

TEST(SettingsFileCommands, SavedSettingsAreThereAfterARestart) {
  ProgramRig rig;
  rig.start();
  rig.trigger("mnuSettingsNeedleWidth_7");
  rig.trigger("mnuSettingsAutoSaveOff");
  rig.trigger("mnuSaveSettings");
  rig.trigger("mnuSettingsNeedleWidth_2");
  rig.window().close();
  ASSERT_TRUE(rig.ended);
  rig.start();
  EXPECT_EQ(rig.settings().Needle_Width, 7);
  EXPECT_TRUE(rig.item("mnuSettingsNeedleWidth_7")->isChecked());
}

TEST(SettingsFileCommands, SaveAsMakesAFileOfTheDisplaySectionsAndStaysWithIt) {
  ProgramRig rig;
  rig.start();
  rig.trigger("mnuSaveSettingsAs");
  answerFile(rig, "dlgSaveSettingsAs", rig.file("mine"));
  const std::string path = rig.file("mine.ini");
  ASSERT_TRUE(rig.store.exists(path));
  EXPECT_EQ(rig.settings().IniPath, path);
  EXPECT_NE(rig.contents(path).find("[Graph]"), std::string::npos);
  EXPECT_EQ(rig.contents(path).find("[Recording]"), std::string::npos);
  rig.window().close();
  EXPECT_NE(rig.contents(path).find("[Recording]"), std::string::npos);
  EXPECT_NE(rig.contents(rig.configPath()).find("mine.ini\""), std::string::npos);
}

TEST(SettingsFileCommands, SaveAsAsksBeforeItReplacesAFile) {
  ProgramRig rig;
  const std::string path = rig.file("old.ini");
  ASSERT_TRUE(rig.store.replace(path, "[Old]\r\nkey=1\r\n").ok());
  rig.start();
  rig.trigger("mnuSaveSettingsAs");
  answerFile(rig, "dlgSaveSettingsAs", path);
  rig.press("msgReplaceSettings", QMessageBox::No);
  EXPECT_EQ(rig.contents(path), "[Old]\r\nkey=1\r\n");
  // Another name may be chosen, or the same again.
  answerFile(rig, "dlgSaveSettingsAs", path);
  rig.press("msgReplaceSettings", QMessageBox::Yes);
  EXPECT_EQ(rig.contents(path).find("[Old]"), std::string::npos);
  EXPECT_EQ(rig.settings().IniPath, path);
}

TEST(SettingsFileCommands, CancelledSaveAsChangesNothing) {
  ProgramRig rig;
  rig.start();
  const std::string before = rig.settings().IniPath;
  rig.trigger("mnuSaveSettingsAs");
  ASSERT_TRUE(rig.opens("dlgSaveSettingsAs"));
  rig.dialog("dlgSaveSettingsAs")->reject();
  EXPECT_EQ(rig.settings().IniPath, before);
  EXPECT_FALSE(rig.store.exists(before));
}

TEST(SettingsFileCommands, LoadTakesOverEverythingTheFileSays) {
  ProgramRig rig;
  const std::string path = rig.file("other.ini");
  ASSERT_TRUE(rig.store
                  .replace(path,
                           "[Colors]\r\nBackground_Color=255\r\n"
                           "[Format]\r\nGraphVisible=True\r\nNeedle_Width=6\r\nDialType=3\r\n"
                           "[Settings]\r\nNeedleBdEnable=True\r\n")
                  .ok());
  rig.start();
  rig.trigger("mnuLoadSettings");
  answerFile(rig, "dlgLoadSettings", path);
  EXPECT_EQ(rig.settings().IniPath, path);
  EXPECT_TRUE(rig.window().graph().isVisible());
  EXPECT_TRUE(rig.item("mnuSettingsNeedleWidth_6")->isChecked());
  EXPECT_FALSE(rig.item("mnuSettingsNeedleWidth_4")->isChecked());
  EXPECT_FALSE(rig.item("mnuSetNeedleBD")->isEnabled());
  // A load adds this mark and leaves the other one.
  EXPECT_TRUE(rig.item("mnuSetNeedleBDOn")->isChecked());
  EXPECT_TRUE(rig.item("mnuSetNeedleBDOff")->isChecked());
  const auto* area = rig.window().centralWidget();
  EXPECT_EQ(area->palette().color(QPalette::Window), QColor(255, 0, 0));
}

TEST(SettingsFileCommands, CancelledLoadReadsThePresentFileAgain) {
  ProgramRig rig;
  rig.leaveSettings("[Format]\r\nNeedle_Width=5\r\n");
  rig.leaveConfig(0, 0);
  rig.start();
  rig.trigger("mnuSettingsNeedleWidth_1");
  rig.trigger("mnuLoadSettings");
  ASSERT_TRUE(rig.opens("dlgLoadSettings"));
  rig.dialog("dlgLoadSettings")->reject();
  EXPECT_EQ(rig.settings().Needle_Width, 5);
  EXPECT_EQ(rig.settings().IniPath, rig.iniPath());
}

}  // namespace
}  // namespace qv3::test
