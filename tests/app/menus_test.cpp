#include <gtest/gtest.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QMenu>
#include <QRadioButton>

#include "settings/settingsrows.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

struct Menus : testing::Test {
  ProgramRig rig;

  std::string setting(std::string_view key) const {
    return textOf(rig.settings(), *findSetting(key));
  }
  /// Of these items, a digit each.
  std::string marks(std::initializer_list<const char*> items) const {
    std::string checked;
    for (const char* name : items) checked += rig.item(name)->isChecked() ? '1' : '0';
    return checked;
  }
};

TEST_F(Menus, EveryRowHasItsItemAndAHandler) {
  rig.start();
  for (const MenuRow& row : menuRows()) {
    const QAction* item = rig.item(row.name);
    ASSERT_NE(item, nullptr) << row.name;
    const bool idle = row.act == Act::Menu || row.act == Act::Separator;
    EXPECT_NE(rig.program->handles(row.act), idle) << row.name;
    EXPECT_EQ(item->isSeparator(), row.act == Act::Separator) << row.name;
    EXPECT_TRUE(item->isSeparator() || item->text().toStdString() == row.caption) << row.name;
    EXPECT_FALSE(row.caption.empty() && item->isVisible()) << row.name;
  }
}

TEST_F(Menus, AChoiceSetsItsSettingAndMovesTheMark) {
  rig.start();
  for (const MenuRow& row : menuRows()) {
    for (const bool on : {true, false}) {
      if (row.act != Act::Toggle) continue;
      rig.trigger(row.name);
      EXPECT_EQ(setting(row.key), on ? "True" : "False") << row.name;
      EXPECT_EQ(rig.item(row.name)->isChecked(), on) << row.name;
    }
    if (row.act != Act::Choose || row.caption.empty()) continue;
    for (int times = 0; times < 2; ++times) {  // chosen again it keeps its mark
      rig.trigger(row.name);
      EXPECT_EQ(setting(row.key), row.value) << row.name;
      for (const MenuRow& other : menuRows()) {
        if (other.menu != row.menu || other.key != row.key || other.caption.empty()) continue;
        EXPECT_EQ(rig.item(other.name)->isChecked(), &other == &row)
            << row.name << " marks " << other.name;
      }
    }
  }
}

TEST_F(Menus, TheGraphTakesItsRoomFromANewHeight) {
  rig.start();
  const int before = rig.window().height();
  const QSize meter = rig.window().dial().size();
  for (const auto& [item, height] :
       {std::pair{"mnuViewGraph", 120}, {"mnuGraphHeightIndex_1", 40}, {"mnuViewGraph", 0}}) {
    rig.trigger(item);
    EXPECT_EQ(rig.window().graph().height(), height);
    EXPECT_EQ(rig.window().height(), before + height);
    EXPECT_EQ(rig.window().dial().size(), meter);
  }
}

TEST_F(Menus, EachColourIsChosenByTheChooserOrByTheDefaults) {
  rig.start();
  QColor last = Qt::black;
  for (const MenuRow& row : menuRows()) {
    if (row.act != Act::PickColour) continue;
    const std::string before = setting(row.key);
    for (const bool accept : {false, true}) {
      rig.trigger(row.name);
      auto* chooser = rig.dialog<QColorDialog>("dlgColour");
      ASSERT_NE(chooser, nullptr) << row.name;
      EXPECT_EQ(chooser->currentColor(), last) << row.name;
      const QColor next(last.red() + 3, 2, 1);
      chooser->setCurrentColor(next);
      static_cast<QDialog*>(chooser)->done(accept ? QDialog::Accepted : QDialog::Rejected);
      ASSERT_FALSE(rig.dialog("dlgColour"));
      if (accept) last = next;
      const int packed = next.red() + 256 * next.green() + 65536 * next.blue();
      EXPECT_EQ(setting(row.key), accept ? std::to_string(packed) : before);
    }
  }
  rig.trigger("mnuSettingsNeedleWidth_8");
  rig.trigger("mnuSetColNeedleShadow_Index_4");
  rig.trigger("mnuSettingsColorsDefault");
  for (const SettingRow& row : settingsRows()) {
    const bool colour = row.section == kColorsSection;
    EXPECT_TRUE(!colour || setting(row.key) == row.defaultText) << row.key;
  }
  EXPECT_EQ(marks({"mnuSetColNeedleShadow_Index_1", "mnuSetColNeedleShadow_Index_4"}), "10");
  EXPECT_EQ(rig.settings().Needle_Width, 8);
}

TEST_F(Menus, IndicesOutsideTheirRangeCheckNothing) {
  rig.startWith(
      "[Format]\r\nNeedle_Width=12\r\nGraphHeight_Index=3.0\r\n"
      "[Settings]\r\nDataLag_Index=0\r\n");
  for (const MenuRow& row : menuRows()) {
    if (row.key != "Needle_Width" && row.key != "DataLag_Index") continue;
    EXPECT_FALSE(rig.item(row.name)->isChecked()) << row.name;
  }
  EXPECT_EQ(rig.settings().DataLag_Index, 0);
  EXPECT_TRUE(rig.item("mnuGraphHeightIndex_3")->isChecked());
}

TEST_F(Menus, TheTestModeRunsAndStopsByItsItem) {
  rig.startWith("[Format]\r\nClockType=3\r\n");
  const auto options = [this] {
    return marks({"mnuConnTestAudio", "mnuConnTestSlow", "mnuConnTestMid", "mnuConnTestFast"});
  };
  EXPECT_EQ(options(), "0010");
  for (const char* chosen : {"Fast", "Slow"}) {
    rig.trigger(std::string("mnuConnTest") + chosen);
    rig.trigger("mnuConnTestAudio");
    EXPECT_EQ(options(), chosen[0] == 'F' ? "1001" : "0100");
  }
  const auto clock = [this] { return rig.window().dial().accessibleParts().back().words; };
  EXPECT_TRUE(clock().startsWith("15:20"));
  rig.trigger("mnuConnTestControl");
  EXPECT_EQ(rig.operation(), Operation::Testing);
  EXPECT_EQ(rig.item("mnuConnTestControl")->text(), "Stop");
  EXPECT_EQ(rig.item("mnuConnectNeedleTest")->text(), "Needle Test - Start");
  EXPECT_FALSE(rig.item("mnuConnectionConnect")->isEnabled());
  rig.trigger("mnuSettingsColorsDefault");  // draws the panel anew
  EXPECT_EQ(clock(), "") << "it would stand still";
  rig.trigger("mnuConnTestControl");
  EXPECT_EQ(rig.operation(), Operation::None);
  EXPECT_EQ(rig.item("mnuConnTestControl")->text(), "Run");
  EXPECT_TRUE(clock().startsWith("15:20"));
}

struct MeterStyle : Menus {
  QRadioButton* option(const char* name) { return rig.find<QRadioButton>(name); }
};

TEST_F(MeterStyle, ClicksChangeSettingsAtOnceAndTheWindowAtTheEnd) {
  rig.start();
  rig.trigger("mnuViewMeter");
  ASSERT_TRUE(rig.opens("frmMeter"));
  EXPECT_EQ(rig.dialog("frmMeter")->windowTitle(), "Meter Display Setup");
  EXPECT_TRUE(option("optDial_1")->isChecked() && option("optScale_0")->isChecked());
  EXPECT_FALSE(option("optDateType_1")->isEnabled());
  for (const int dial : {0, 1, 3}) {
    option(("optDial_" + std::to_string(dial)).c_str())->click();
    EXPECT_EQ(rig.settings().DialType, dial);
    EXPECT_EQ(rig.item("mnuSetNeedleBD")->isEnabled(), dial == 1);
  }
  option("optScale_1")->click();
  option("optClock_3")->click();
  EXPECT_TRUE(option("optDateType_1")->isEnabled());
  option("optDateType_2")->click();
  rig.find<QCheckBox>("chkClockLeft")->click();
  const QImage before = rig.window().dial().grab().toImage();
  rig.click("cmdClose");
  EXPECT_EQ(rig.dialog("frmMeter"), nullptr);
  EXPECT_NE(rig.window().dial().grab().toImage(), before);
  const ProgramSettings& now = rig.settings();
  EXPECT_EQ(std::tuple(now.DialType, now.ScaleType, now.ClockType, now.DateType, now.ClockLeft),
            std::tuple(3, 1, 3, 2, true));
}

TEST_F(MeterStyle, OpeningChangesNothing) {
  rig.startWith("[Format]\r\nDialType=2\r\nScaleType=7\r\nClockType=2\r\nDateType=0\r\n");
  rig.trigger("mnuViewMeter");
  ASSERT_TRUE(rig.opens("frmMeter"));
  EXPECT_TRUE(option("optDial_2")->isChecked());
  EXPECT_TRUE(option("optDateType_0")->isEnabled());
  rig.dialog("frmMeter")->reject();
  const ProgramSettings& now = rig.settings();
  EXPECT_EQ(std::tuple(now.DialType, now.ScaleType, now.ClockType), std::tuple(2, 7, 2));
}

struct SettingsFileCommands : testing::Test {
  ProgramRig rig;

  void answer(const char* name, const std::string& path) {
    rig.chooseFile(name, path);
    ASSERT_EQ(rig.dialog(name), nullptr);
  }
};

TEST_F(SettingsFileCommands, SaveAsMakesAFileOfTheDisplaySectionsAndStaysWithIt) {
  rig.start();
  rig.trigger("mnuSaveSettingsAs");
  answer("dlgSaveSettingsAs", rig.file("mine"));
  const std::string path = rig.file("mine.ini");
  EXPECT_EQ(rig.settings().IniPath, path);
  EXPECT_TRUE(rig.contains(path, "[Graph]"));
  EXPECT_FALSE(rig.contains(path, "[Recording]"));
  rig.window().close();
  EXPECT_TRUE(rig.contains(path, "[Recording]"));
  EXPECT_TRUE(rig.contains(rig.configPath(), "mine.ini\""));
}

TEST_F(SettingsFileCommands, SaveAsAsksBeforeItReplacesAFile) {
  const std::string path = rig.file("old.ini");
  rig.leaveFile(path, "[Old]\r\nkey=1\r\n");
  rig.start();
  rig.trigger("mnuSaveSettingsAs");
  // After No another name may be chosen, or the same again.
  for (const auto& [button, kept] : {std::pair{QMessageBox::No, true}, {QMessageBox::Yes, false}}) {
    answer("dlgSaveSettingsAs", path);
    rig.press("msgReplaceSettings", button);
    EXPECT_EQ(rig.contains(path, "[Old]"), kept);
    EXPECT_EQ(rig.settings().IniPath == path, !kept);
  }
}

TEST_F(SettingsFileCommands, LoadTakesOverEverythingTheFileSays) {
  const std::string path = rig.file("other.ini");
  rig.leaveFile(path,
                "[Colors]\r\nBackground_Color=255\r\n"
                "[Format]\r\nGraphVisible=True\r\nNeedle_Width=6\r\nDialType=3\r\n"
                "[Settings]\r\nNeedleBdEnable=True\r\n");
  rig.start();
  rig.trigger("mnuLoadSettings");
  answer("dlgLoadSettings", path);
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

TEST_F(SettingsFileCommands, ACancelledDialogReadsThePresentFileOrChangesNothing) {
  rig.startWith("[Format]\r\nNeedle_Width=5\r\n");
  rig.trigger("mnuSettingsNeedleWidth_1");
  for (const auto& [item, dialog, width] : {std::tuple{"mnuSaveSettingsAs", "dlgSaveSettingsAs", 1},
                                            {"mnuLoadSettings", "dlgLoadSettings", 5}}) {
    rig.trigger(item);
    ASSERT_TRUE(rig.opens(dialog));
    rig.dialog(dialog)->reject();
    EXPECT_EQ(rig.settings().Needle_Width, width) << item;
    EXPECT_EQ(rig.settings().IniPath, rig.iniPath()) << item;
    EXPECT_EQ(rig.contents(rig.iniPath()), "[Format]\r\nNeedle_Width=5\r\n") << item;
  }
}

}  // namespace
}  // namespace qv3::test
