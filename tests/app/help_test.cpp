#include <gtest/gtest.h>

#include <QLabel>

#include "app/version.h"
#include "app/window/programicon.h"
#include "app/window/splash.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

/// What the labels of a window say.
QStringList texts(const QWidget& window, std::initializer_list<const char*> labels) {
  QStringList shown;
  for (const char* label : labels) shown << window.findChild<QLabel*>(QLatin1String(label))->text();
  return shown;
}

struct About : testing::Test {
  ProgramRig rig;

  void open() {
    rig.trigger("mnuhelpAbout");
    ASSERT_TRUE(rig.opens("frmAbout"));
  }
  void expectMeter(const QString& firmware, const QString& boot, const QString& serial) {
    open();
    EXPECT_EQ(texts(*rig.dialog("frmAbout"), {"Label5", "lblSoft", "Label2", "lblFirm", "Label3",
                                              "lblBoot", "Label4", "lblhard"}),
              QStringList({"Software Version:", QV3_VERSION, "Firmware Version:", firmware,
                           "Boot Loader Version:", boot, "Hardware Serial Number:", serial}));
  }
};

TEST_F(About, SaysWhatItIsAndNothingOfAMeterThatNeverAnswered) {
  rig.start();
  expectMeter("", "", "");
  QDialog* about = rig.dialog("frmAbout");
  EXPECT_EQ(about->windowTitle(), "About qv3 Varnel");
  EXPECT_TRUE(about->isModal());
  EXPECT_TRUE(texts(*about, {"lblDisclaimer"})[0].contains("\"as-is\""));
  EXPECT_FALSE(about->findChild<QLabel*>("picIcon")->pixmap().isNull());
  rig.click("cmdOK");
  EXPECT_EQ(rig.dialog("frmAbout"), nullptr);
}

TEST_F(About, ShowsTheMeterAsItReportedItselfAlsoOnceItIsGone) {
  rig.startLive();
  expectMeter("QV3A", "1.04", "20417");
  rig.click("cmdOK");
  rig.trigger("mnuConnectionPortComm_0");
  expectMeter("QV3A", "1.04", "20417");
}

TEST_F(About, SystemInfoStartsAProgramOrSaysThatThereIsNone) {
  int started = 0;
  rig.systemInfo = [&] { return ++started == 1; };
  rig.start();
  open();
  rig.click("cmdSysInfo");
  EXPECT_EQ(started, 1);
  EXPECT_EQ(rig.dialog("msgSysInfo"), nullptr);
  rig.click("cmdSysInfo");
  const auto* box = rig.dialog<QMessageBox>("msgSysInfo");
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->text(), "System Information Is Unavailable At This Time");
  EXPECT_EQ(box->standardButtons(), QMessageBox::Ok);
  rig.press("msgSysInfo", QMessageBox::Ok);
  EXPECT_NE(rig.dialog("frmAbout"), nullptr);
}

TEST(Help, OpensTheGuideWithoutAWord) {
  ProgramRig rig;
  rig.start();
  rig.trigger("mnuHelpHelp");
  EXPECT_EQ(rig.guideOpened, 1);
  EXPECT_EQ(ProgramRig::openDialog(), nullptr);
}

TEST(SplashWindow, NamesProductAndVersion) {
  const Splash splash;
  EXPECT_EQ(splash.windowTitle(), "qv3 Varnel");
  EXPECT_EQ(
      texts(splash, {"lblTitle", "Label1", "lblProductName", "Label2", "lblVersion", "lblInfo"}),
      QStringList({"qv3 Varnel", "Product Name:", "qv3 Varnel",
                   "Software Version:", "Version " QV3_VERSION, "Loading"}));
}

TEST(ProgramIcon, HasItsPictures) {
  EXPECT_EQ(programIcon().availableSizes().size(), 3);
  for (const double ratio : {1.0, 1.5, 2.0, 4.0}) {
    const QPixmap picture = programPicture(64, ratio);
    EXPECT_EQ(picture.size(), QSize(64, 64) * ratio);
    EXPECT_EQ(picture.devicePixelRatio(), ratio);
  }
}

}  // namespace
}  // namespace qv3::test
