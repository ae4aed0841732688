#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include "app/version.h"
#include "app/window/programicon.h"
#include "app/window/splash.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

QString text(const QWidget& window, const char* label) {
  return window.findChild<QLabel*>(QLatin1String(label))->text();
}

/// Software, firmware, boot loader, serial number: caption and value of each.
QStringList facts(const ProgramRig& rig) {
  QStringList shown;
  for (const char* label :
       {"Label5", "lblSoft", "Label2", "lblFirm", "Label3", "lblBoot", "Label4", "lblhard"}) {
    shown << text(*rig.dialog("frmAbout"), label);
  }
  return shown;
}

void click(const ProgramRig& rig, const char* button) {
  rig.dialog("frmAbout")->findChild<QPushButton*>(QLatin1String(button))->click();
}

TEST(About, SaysWhatItIsAndNothingOfAMeterThatNeverAnswered) {
  ProgramRig rig;
  rig.start();
  rig.trigger("mnuhelpAbout");
  ASSERT_TRUE(rig.opens("frmAbout"));
  QDialog* about = rig.dialog("frmAbout");
  EXPECT_EQ(about->windowTitle(), "About qv3 Varnel");
  EXPECT_TRUE(about->isModal());
  EXPECT_EQ(facts(rig), QStringList({"Software Version:", QV3_VERSION, "Firmware Version:", "",
                                     "Boot Loader Version:", "", "Hardware Serial Number:", ""}));
  EXPECT_TRUE(text(*about, "lblDisclaimer").contains("\"as-is\""));
  EXPECT_FALSE(about->findChild<QLabel*>("picIcon")->pixmap().isNull());
  click(rig, "cmdOK");
  EXPECT_EQ(rig.dialog("frmAbout"), nullptr);
}

TEST(About, ShowsTheMeterAsItReportedItselfAlsoOnceItIsGone) {
  ProgramRig rig;
  rig.plugIn(1, "3A");
  rig.leaveConfig(0, 1);
  rig.start();
  for (const char* unplug : {"", "mnuConnectionPortComm_0"}) {
    if (*unplug != '\0') rig.trigger(unplug);
    rig.trigger("mnuhelpAbout");
    ASSERT_TRUE(rig.opens("frmAbout"));
    EXPECT_EQ(facts(rig),
              QStringList({"Software Version:", QV3_VERSION, "Firmware Version:", "QV3A",
                           "Boot Loader Version:", "1.04", "Hardware Serial Number:", "20417"}));
    click(rig, "cmdOK");
  }
}

TEST(About, SystemInfoStartsAProgramOrSaysThatThereIsNone) {
  ProgramRig rig;
  int started = 0;
  bool installed = true;
  rig.systemInfo = [&] { return installed && ++started != 0; };
  rig.start();
  rig.trigger("mnuhelpAbout");
  ASSERT_TRUE(rig.opens("frmAbout"));
  click(rig, "cmdSysInfo");
  EXPECT_EQ(started, 1);
  EXPECT_EQ(rig.dialog("msgSysInfo"), nullptr);

  installed = false;
  click(rig, "cmdSysInfo");
  ASSERT_TRUE(rig.opens("msgSysInfo"));
  auto* box = rig.dialog<QMessageBox>("msgSysInfo");
  EXPECT_EQ(box->text(), "System Information Is Unavailable At This Time");
  EXPECT_EQ(box->standardButtons(), QMessageBox::Ok);
  rig.press("msgSysInfo", QMessageBox::Ok);
  EXPECT_NE(rig.dialog("frmAbout"), nullptr);
}

TEST(Help, OpensTheGuideWithoutAWord) {
  ProgramRig rig;
  rig.start();
  rig.trigger("mnuHelpHelp");
  rig.trigger("mnuHelpHelp");
  EXPECT_EQ(rig.guideOpened, 2);
  EXPECT_TRUE(rig.window().findChildren<QDialog*>().isEmpty());
}

TEST(SplashWindow, NamesProductAndVersion) {
  const Splash splash;
  EXPECT_EQ(splash.windowTitle(), "qv3 Varnel");
  EXPECT_EQ(text(splash, "lblTitle"), "qv3 Varnel");
  EXPECT_EQ(text(splash, "Label1"), "Product Name:");
  EXPECT_EQ(text(splash, "lblProductName"), "qv3 Varnel");
  EXPECT_EQ(text(splash, "Label2"), "Software Version:");
  EXPECT_EQ(text(splash, "lblVersion"), "Version " QV3_VERSION);
  EXPECT_EQ(text(splash, "lblInfo"), "Loading");
}

TEST(ProgramIcon, HasItsPictures) {
  const QIcon icon = programIcon();
  EXPECT_EQ(icon.availableSizes().size(), 3);
  for (const double ratio : {1.0, 1.5, 2.0, 4.0}) {
    const QPixmap picture = programPicture(64, ratio);
    EXPECT_EQ(picture.size(), QSize(64, 64) * ratio);
    EXPECT_EQ(picture.devicePixelRatio(), ratio);
  }
}

}  // namespace
}  // namespace qv3::test
