#include <gtest/gtest.h>

#include <QAbstractButton>

#include <QLabel>
#include <QScreen>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

QWidget* splash() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (widget->objectName() == "frmQvSplash" && widget->isVisible()) return widget;
  }
  return nullptr;
}

QString splashText(const char* label) {
  QWidget* window = splash();
  return window ? window->findChild<QLabel*>(QLatin1String(label))->text() : QString();
}

TEST(Start, AFirstStartWritesItsConfigAndComesUpInTheMiddle) {
  ProgramRig rig;
  rig.start();
  EXPECT_TRUE(rig.contents(rig.configPath()).starts_with("\"\"\r\n0\r\n0\r\n0\r\n"));
  EXPECT_FALSE(rig.store.exists(rig.iniPath()));
  EXPECT_EQ(rig.window().width(), 896);
  const QPoint off =
      rig.window().geometry().center() - rig.window().screen()->availableGeometry().center();
  EXPECT_LE(off.manhattanLength(), 8);  // the frame is not counted
  EXPECT_EQ(rig.status(), "No Meter");
  EXPECT_EQ(splash(), nullptr);
  EXPECT_EQ(rig.settings().IniPath, rig.iniPath());
}

TEST(Start, WithoutAPortNothingIsProbedOrAsked) {
  ProgramRig rig;
  rig.plugIn(1, "3A");
  rig.leaveConfig(0, 0);
  QStringList shown;
  rig.hasty.during = [&shown] {
    if (splash()) shown << splashText("lblInfo");
  };
  rig.start();
  EXPECT_EQ(shown, (QStringList{"Loading", "No Meter"}));
  EXPECT_EQ(rig.status(), "No Meter");
  for (const std::string& entry : rig.log) EXPECT_FALSE(entry.starts_with("send")) << entry;
}

TEST(Start, AConfiguredMeterIsFoundBehindTheSplash) {
  ProgramRig rig;
  rig.plugIn(9, "3A");
  rig.leaveConfig(0, 9, 33);
  QStringList shown;
  rig.hasty.during = [&shown] {
    if (splash()) shown << splash()->windowTitle() << splashText("lblInfo");
  };
  rig.start();
  ASSERT_GE(shown.size(), 4);
  EXPECT_EQ(shown[0], "qv3 Varnel");
  EXPECT_EQ(shown[1], "Loading");
  EXPECT_EQ(shown[3], "Checking Port 9 for Hardware");
  EXPECT_EQ(splash(), nullptr);
  EXPECT_EQ(rig.instrument().programState(), 1);
  EXPECT_EQ(rig.settings().KnobPosition, 33);
  // The first event comes after five characters, so the frame's end waits for the next event.
  for (const char* part : {"P1234", "\r"}) {
    rig.port.feed(part);
    EXPECT_EQ(rig.instrument().state().Reading, 0);
  }
  rig.port.feed("P1235");
  EXPECT_EQ(rig.instrument().state().Reading, 0x1234);
}

struct Silent {
  const char* what;
  int configured;
  int silentPort;
  int meterPort;
};

class SilentPort : public testing::TestWithParam<Silent> {};

TEST_P(SilentPort, LooksOnAllPortsInstead) {
  ProgramRig rig;
  if (GetParam().silentPort) rig.plugIn(GetParam().silentPort, "");
  if (GetParam().meterPort) rig.plugIn(GetParam().meterPort, "3A");
  rig.leaveConfig(0, GetParam().configured);
  rig.begin();
  if (GetParam().meterPort == 0) rig.press("msgNoHardware", QMessageBox::Cancel);
  ASSERT_TRUE(QTest::qWaitFor([&] { return rig.up(); }));
  EXPECT_EQ(rig.instrument().meterFound(), GetParam().meterPort != 0);
  EXPECT_EQ(rig.settings().ComPort,
            GetParam().meterPort ? GetParam().meterPort : GetParam().configured);
}

INSTANTIATE_TEST_SUITE_P(Ports, SilentPort,
                         testing::Values(Silent{"missing", 4, 0, 0}, Silent{"silent", 4, 4, 0},
                                         Silent{"missing, meter elsewhere", 4, 0, 11},
                                         Silent{"silent, meter elsewhere", 4, 4, 2}));

struct Place {
  const char* config;
  QRect expected;  ///< without a height
  Qt::WindowStates state;
};

class WindowPlace : public testing::TestWithParam<Place> {};

TEST_P(WindowPlace, IsRestoredAndKept) {
  ProgramRig rig;
  rig.leaveConfig(0, 0, 0, GetParam().config);
  rig.start();
  const CurrentWindow place = rig.window().currentPlace();
  EXPECT_EQ(place.left, GetParam().expected.left() * 15);
  EXPECT_EQ(place.top, GetParam().expected.top() * 15);
  EXPECT_EQ(place.width, GetParam().expected.width() * 15);
  EXPECT_EQ(rig.window().windowState() & ~Qt::WindowActive, GetParam().state);
}

// The offscreen platform has one screen of 800 x 800.
INSTANTIATE_TEST_SUITE_P(
    Configs, WindowPlace,
    testing::Values(Place{"750\n1500\n9000\n0\n", {50, 100, 600, 0}, {}},
                    Place{"750\n1500\n9000\n2\n", {50, 100, 600, 0}, Qt::WindowMaximized},
                    Place{"-3000\n0\n9000\n0\n", {-200, 0, 600, 0}, {}},
                    Place{"750\n1500\n15\n0\n", {50, 100, 320, 0}, {}}));

TEST(Start, AWindowOffEveryScreenComesBackToTheMiddle) {
  ProgramRig rig;
  rig.leaveConfig(0, 0, 0, "30000\n1500\n9000\n0\n");
  rig.start();
  EXPECT_EQ(rig.window().width(), 896);
  EXPECT_LT(rig.window().x(), 800);
}

TEST(Start, AConfigThatCannotBeWrittenIsSaidAndTheStartGoesOn) {
  ProgramRig rig;
  rig.enterFails = true;
  rig.leaveSettings("[Settings]\r\nNeedleBdEnable=True\r\n");
  rig.begin();
  ASSERT_TRUE(rig.opens("msgConfigNotSaved"));
  EXPECT_FALSE(rig.item("mnuSetNeedleBDOff")->isChecked()) << "nothing is loaded yet";
  rig.press("msgConfigNotSaved", QMessageBox::Ok);
  EXPECT_TRUE(QTest::qWaitFor([&] { return rig.up(); }));
  EXPECT_FALSE(rig.item("mnuSetNeedleBDOff")->isChecked());
  EXPECT_TRUE(rig.item("mnuSetNeedleBDOn")->isChecked());
}

TEST(Start, EverySurfaceHasItsNames) {
  ProgramRig rig;
  rig.start();
  for (const QWidget* widget : rig.window().centralWidget()->findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;  // the list of a closed combo box is the toolkit's own
    EXPECT_FALSE(widget->objectName().isEmpty());
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const QString spoken = button != nullptr ? button->text() : widget->accessibleName();
    EXPECT_FALSE(spoken.isEmpty()) << widget->objectName().toStdString();
  }
}

}  // namespace
}  // namespace qv3::test
