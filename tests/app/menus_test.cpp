#include <gtest/gtest.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QMenu>
#include <QRadioButton>

#include "settings/settingsrows.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

std::string textOf(const ProgramSettings& settings, std::string_view key) {
  return qv3::textOf(settings, *findSetting(key));
}

TEST(Menus, EveryRowHasItsItemAndAHandler) {
  ProgramRig rig;
  rig.start();
  for (const MenuRow& row : menuRows()) {
    const std::string name(row.name);
    ASSERT_NE(rig.item(name.c_str()), nullptr) << name;
    const bool idle = row.act == Act::Menu || row.act == Act::Separator;
    EXPECT_NE(rig.program->handles(row.act), idle) << name;
    if (row.act == Act::Separator) continue;
    EXPECT_EQ(rig.item(name.c_str())->text().toStdString(), row.caption);
    EXPECT_FALSE(row.caption.empty() && rig.item(name.c_str())->isVisible()) << name;
  }
  EXPECT_TRUE(rig.item("Dummy1")->isSeparator());
}

TEST(Menus, AChoiceSetsItsSettingAndMovesTheMark) {
  ProgramRig rig;
  rig.start();
  for (const MenuRow& row : menuRows()) {
    if (row.act != Act::Choose || row.caption.empty()) continue;
    const std::string name(row.name);
    rig.trigger(name.c_str());
    EXPECT_EQ(textOf(rig.settings(), row.key), row.value) << name;
    for (const MenuRow& other : menuRows()) {
      if (other.menu != row.menu || other.key != row.key || other.caption.empty()) continue;
      EXPECT_EQ(rig.item(std::string(other.name).c_str())->isChecked(), &other == &row)
          << name << " marks " << other.name;
    }
  }
}

TEST(Menus, AChoiceMadeAgainKeepsItsMark) {
  ProgramRig rig;
  rig.start();
  for (const char* name : {"mnuSettingsNeedleWidth_4", "mnuSetNeedleBDOff", "mnuSetBmFreezeOff"}) {
    ASSERT_TRUE(rig.item(name)->isChecked()) << name;
    rig.trigger(name);
    EXPECT_TRUE(rig.item(name)->isChecked()) << name;
  }
}

TEST(Menus, ATogglePutsItsSettingToAndFro) {
  ProgramRig rig;
  rig.start();
  for (const char* name : {"mnuViewGraph", "mnuGraphGridX", "mnuGraphGridY", "mnuGraphInvert"}) {
    const std::string_view key = findMenuRow(name)->key;
    rig.trigger(name);
    EXPECT_EQ(textOf(rig.settings(), key), "True") << name;
    EXPECT_TRUE(rig.item(name)->isChecked()) << name;
    rig.trigger(name);
    EXPECT_EQ(textOf(rig.settings(), key), "False") << name;
    EXPECT_FALSE(rig.item(name)->isChecked()) << name;
  }
}

TEST(Menus, TheGraphTakesItsRoomFromANewHeight) {
  ProgramRig rig;
  rig.start();
  const int before = rig.window().height();
  const QSize meter = rig.window().dial().size();
  rig.trigger("mnuViewGraph");
  EXPECT_TRUE(rig.window().graph().isVisible());
  EXPECT_EQ(rig.window().graph().height(), 120);
  EXPECT_EQ(rig.window().height(), before + 120);
  EXPECT_EQ(rig.window().dial().size(), meter);
  rig.trigger("mnuGraphHeightIndex_1");
  EXPECT_EQ(rig.window().graph().height(), 40);
  EXPECT_EQ(rig.window().height(), before + 40);
  rig.trigger("mnuViewGraph");
  EXPECT_EQ(rig.window().height(), before);
}

TEST(Menus, EachColourIsChosenByTheChooserWhichStartsAtItsLastAnswer) {
  ProgramRig rig;
  rig.start();
  QColor last = Qt::black;
  for (const MenuRow& row : menuRows()) {
    if (row.act != Act::PickColour) continue;
    const std::string before = textOf(rig.settings(), row.key);
    for (const bool accept : {false, true}) {
      rig.trigger(std::string(row.name).c_str());
      ASSERT_TRUE(rig.opens("dlgColour")) << row.name;
      auto* chooser = rig.dialog<QColorDialog>("dlgColour");
      EXPECT_EQ(chooser->currentColor(), last) << row.name;
      const QColor next(last.red() + 3, 2, 1);
      chooser->setCurrentColor(next);
      static_cast<QDialog*>(chooser)->done(accept ? QDialog::Accepted : QDialog::Rejected);
      ASSERT_FALSE(rig.dialog("dlgColour"));
      if (accept) last = next;
      const int packed = next.red() + 256 * next.green() + 65536 * next.blue();
      EXPECT_EQ(textOf(rig.settings(), row.key), accept ? std::to_string(packed) : before);
    }
  }
}

TEST(Menus, DefaultColoursLeaveOtherSettingsAlone) {
  ProgramRig rig;
  rig.leaveSettings(
      "[Colors]\r\nDial_Color=7\r\nShadowNeedleColor_Index=4\r\n"
      "[Format]\r\nNeedle_Width=8\r\n");
  rig.leaveConfig(0, 0);
  rig.start();
  ASSERT_EQ(rig.settings().Dial_Color, 7);
  rig.trigger("mnuSettingsColorsDefault");
  EXPECT_EQ(rig.settings().Dial_Color, 16777215);
  EXPECT_EQ(rig.settings().Needle_Width, 8);
  EXPECT_TRUE(rig.item("mnuSetColNeedleShadow_Index_1")->isChecked());
  EXPECT_FALSE(rig.item("mnuSetColNeedleShadow_Index_4")->isChecked());
  EXPECT_NE(rig.contents(rig.iniPath()).find("Dial_Color=7"), std::string::npos);
}

TEST(Menus, IndicesOutsideTheirRangeCheckNothing) {
  ProgramRig rig;
  rig.leaveSettings(
      "[Format]\r\nNeedle_Width=12\r\nGraphHeight_Index=3.0\r\n"
      "[Settings]\r\nDataLag_Index=0\r\n");
  rig.leaveConfig(0, 0);
  rig.start();
  for (const MenuRow& row : menuRows()) {
    if (row.key != "Needle_Width" && row.key != "DataLag_Index") continue;
    EXPECT_FALSE(rig.item(std::string(row.name).c_str())->isChecked()) << row.name;
  }
  EXPECT_EQ(rig.settings().DataLag_Index, 0);
  EXPECT_TRUE(rig.item("mnuGraphHeightIndex_3")->isChecked());
}

TEST(Menus, TheTestModeRunsAndStopsByItsItem) {
  ProgramRig rig;
  rig.files.contents["/data/dummy.mp3"] = "silence";
  rig.start();
  const auto marks = [&rig] {
    std::string checked;
    for (const char* name :
         {"mnuConnTestAudio", "mnuConnTestSlow", "mnuConnTestMid", "mnuConnTestFast"}) {
      checked += rig.item(name)->isChecked() ? '1' : '0';
    }
    return checked;
  };
  EXPECT_EQ(marks(), "0010");
  rig.trigger("mnuConnTestFast");
  rig.trigger("mnuConnTestAudio");
  EXPECT_EQ(marks(), "1001");
  rig.trigger("mnuConnTestSlow");
  rig.trigger("mnuConnTestAudio");
  EXPECT_EQ(marks(), "0100");
  rig.trigger("mnuConnTestControl");
  EXPECT_EQ(rig.instrument().operation(), Operation::Testing);
  EXPECT_EQ(rig.item("mnuConnTestControl")->text(), "Stop");
  EXPECT_EQ(rig.item("mnuConnectNeedleTest")->text(), "Needle Test - Start");
  EXPECT_FALSE(rig.item("mnuConnectionConnect")->isEnabled());
  rig.trigger("mnuConnTestFast");
  rig.trigger("mnuConnTestControl");
  EXPECT_EQ(rig.instrument().operation(), Operation::None);
  EXPECT_EQ(rig.item("mnuConnTestControl")->text(), "Run");
}

TEST(Menus, AHiddenRecordingPanelHidesItsMenuToo) {
  ProgramRig rig;
  rig.leaveSettings("[Format]\r\nRecordVisible=False\r\n");
  rig.leaveConfig(0, 0);
  rig.start();
  EXPECT_FALSE(rig.item("mnuRecording")->isVisible());
  EXPECT_FALSE(rig.item("mnuViewRecording")->isChecked());
}

QRadioButton* option(ProgramRig& rig, const char* name) {
  return rig.dialog("frmMeter")->findChild<QRadioButton*>(QLatin1String(name));
}

TEST(MeterStyle, ClicksChangeSettingsAtOnceAndTheWindowAtTheEnd) {
  ProgramRig rig;
  rig.start();
  rig.trigger("mnuViewMeter");
  ASSERT_TRUE(rig.opens("frmMeter"));
  EXPECT_EQ(rig.dialog("frmMeter")->windowTitle(), "Meter Display Setup");
  EXPECT_TRUE(option(rig, "optDial_1")->isChecked());
  EXPECT_TRUE(option(rig, "optScale_0")->isChecked());
  EXPECT_FALSE(option(rig, "optDateType_1")->isEnabled());

  option(rig, "optDial_0")->click();
  EXPECT_EQ(rig.settings().DialType, 0);
  EXPECT_FALSE(rig.item("mnuSetNeedleBD")->isEnabled());
  option(rig, "optDial_1")->click();
  EXPECT_TRUE(rig.item("mnuSetNeedleBD")->isEnabled());
  option(rig, "optDial_3")->click();
  option(rig, "optScale_1")->click();
  option(rig, "optClock_3")->click();
  EXPECT_TRUE(option(rig, "optDateType_1")->isEnabled());
  option(rig, "optDateType_2")->click();
  rig.dialog("frmMeter")->findChild<QCheckBox*>("chkClockLeft")->click();
  const QImage before = rig.window().dial().grab().toImage();
  rig.dialog("frmMeter")->findChild<QAbstractButton*>("cmdClose")->click();
  EXPECT_EQ(rig.dialog("frmMeter"), nullptr);
  EXPECT_NE(rig.window().dial().grab().toImage(), before);
  const ProgramSettings& settings = rig.settings();
  EXPECT_EQ(settings.DialType, 3);
  EXPECT_EQ(settings.ScaleType, 1);
  EXPECT_EQ(settings.ClockType, 3);
  EXPECT_EQ(settings.DateType, 2);
  EXPECT_TRUE(settings.ClockLeft);
}

TEST(MeterStyle, OpeningChangesNothing) {
  ProgramRig rig;
  rig.leaveSettings("[Format]\r\nDialType=2\r\nScaleType=7\r\nClockType=2\r\nDateType=0\r\n");
  rig.leaveConfig(0, 0);
  rig.start();
  rig.trigger("mnuViewMeter");
  ASSERT_TRUE(rig.opens("frmMeter"));
  EXPECT_TRUE(option(rig, "optDial_2")->isChecked());
  EXPECT_TRUE(option(rig, "optDateType_0")->isEnabled());
  rig.dialog("frmMeter")->reject();
  EXPECT_EQ(rig.settings().DialType, 2);
  EXPECT_EQ(rig.settings().ScaleType, 7);
  EXPECT_EQ(rig.settings().ClockType, 2);
}

}  // namespace
}  // namespace qv3::test
