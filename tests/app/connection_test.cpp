#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

class Connection : public testing::Test {
 protected:
  bool sent(const std::string& command) const {
    return std::find(rig.log.begin(), rig.log.end(), "send " + command) != rig.log.end();
  }
  bool shows(const char* words) const { return rig.dialWords().contains(QLatin1String(words)); }
  void unplugAll() {
    rig.port.lose();
    rig.port.nodes.clear();
  }

  ProgramRig rig;
};

TEST_F(Connection, ConnectFindsTheFirstMeterAndRefusesEverythingMeanwhile) {
  rig.plugIn(2, "");
  rig.plugIn(5, "3A");
  rig.plugIn(7, "40");
  rig.start();
  EXPECT_TRUE(shows("No Meter"));
  std::set<std::string> statuses;
  rig.waiter.during = [&] {
    statuses.insert(rig.status());
    EXPECT_FALSE(rig.item("mnuConnectionConnect")->isEnabled());
    EXPECT_FALSE(rig.item("mnuSettings")->isEnabled());
    EXPECT_TRUE(rig.item("mnuExit")->isEnabled());
  };
  rig.trigger("mnuConnectionConnect");
  EXPECT_TRUE(shows("LINK, Input OK"));
  EXPECT_EQ(statuses, (std::set<std::string>{"Checking Port 2 for Hardware",
                                             "Checking Port 5 for Hardware"}));
  EXPECT_EQ(rig.settings().ComPort, 5);
  EXPECT_TRUE(rig.item("mnuConnectionPortComm_5")->isChecked());
  EXPECT_TRUE(rig.item("mnuConnectionPortComm_2")->isVisible());
  EXPECT_FALSE(rig.item("mnuConnectionPortComm_3")->isVisible());
  EXPECT_EQ(rig.item("mnuConnectionPortComm_5")->toolTip(), "/dev/ttyUSB4");
  rig.port.feed("P6590\r");
  EXPECT_EQ(rig.instrument().state().Reading, 0x6590);
  EXPECT_TRUE(shows("base 2.85"));
}

TEST_F(Connection, RetryLooksAgainAndCancelLeavesThePortAsItWas) {
  rig.plugIn(3, "3A");
  rig.leaveConfig(0, 3);
  rig.start();
  ASSERT_TRUE(rig.instrument().meterFound());
  unplugAll();
  for (const int number : {4, 5}) {
    rig.port.nodes[ProgramRig::pathOf(number)] = {PortFault::Busy, "another program is using it",
                                                  "End it:\n    kill 812"};
  }
  rig.trigger("mnuConnectionConnect");
  const auto* question = rig.dialog<QMessageBox>("msgNoHardware");
  ASSERT_NE(question, nullptr);
  EXPECT_EQ(question->windowTitle(), "No Hardware Detected");
  EXPECT_EQ(question->text(),
            "No qv3 Varnel meter was found. Please check the connection and try again.\n\n"
            "Port Comm3: (/dev/ttyUSB2) could not be opened: there is no such device\n"
            "Port Comm4: (/dev/ttyUSB3) could not be opened: another program is using it\n"
            "Port Comm5: (/dev/ttyUSB4) could not be opened: another program is using it\n\n"
            "End it:\n    kill 812");
  EXPECT_EQ(rig.status(), "No Hardware Detected");

  rig.plugIn(6, "2A");
  rig.press("msgNoHardware", QMessageBox::Retry);
  EXPECT_TRUE(shows("Input OK"));
  EXPECT_EQ(rig.settings().ComPort, 6);

  unplugAll();
  rig.trigger("mnuConnectionConnect");
  rig.press("msgNoHardware", QMessageBox::Cancel);
  EXPECT_TRUE(shows("No Meter"));
  EXPECT_EQ(rig.settings().ComPort, 6);
  EXPECT_FALSE(rig.instrument().meterFound());
  EXPECT_TRUE(rig.item("mnuConnectionConnect")->isEnabled());
}

TEST_F(Connection, APortItemLooksThereAlone) {
  rig.plugIn(2, "");
  rig.startLive();
  rig.trigger("mnuConnectionPortComm_2");
  rig.plugIn(5, "3A");
  rig.press("msgNoHardware", QMessageBox::Retry);
  ASSERT_TRUE(rig.opens("msgNoHardware")) << "only that port is asked again";
  rig.press("msgNoHardware", QMessageBox::Cancel);
  EXPECT_TRUE(rig.item("mnuConnectionPortComm_5")->isVisible()) << "a retry scans";
  EXPECT_EQ(rig.settings().ComPort, 1);
  rig.trigger("mnuConnectionPortComm_1");
  EXPECT_TRUE(shows("Input OK"));
  rig.trigger("mnuConnectionPortComm_0");
  EXPECT_EQ(rig.settings().ComPort, 0);
  EXPECT_FALSE(rig.port.isOpen());
  EXPECT_TRUE(rig.item("mnuConnectionPortComm_0")->isChecked());
  EXPECT_TRUE(shows("No Meter"));
}

TEST_F(Connection, TheSensorMenuIsForModel31) {
  rig.startLive({}, "31");
  const auto marks = [this] {
    return std::pair{rig.item("mnuSensorLocal")->isChecked(),
                     rig.item("mnuSensorRemote")->isChecked()};
  };
  ASSERT_TRUE(sent("SL"));
  rig.port.feed("R6590\r");
  EXPECT_EQ(marks(), std::pair(false, true));
  EXPECT_TRUE(rig.settings().qv3SensorMode);
  rig.log.clear();
  rig.trigger("mnuSensorLocal");
  EXPECT_TRUE(sent("SL"));
  EXPECT_EQ(marks(), std::pair(false, false));
  rig.port.feed("L6590\r");
  EXPECT_EQ(marks(), std::pair(true, false));
  rig.trigger("mnuSensorRemote");
  EXPECT_TRUE(sent("SR"));
  rig.trigger("mnuConnectionPortComm_0");
  EXPECT_FALSE(rig.item("mnuConnectSensor")->isEnabled());
}

TEST_F(Connection, TheNeedleTestTogglesItsCaption) {
  rig.start();
  for (const bool runs : {true, false}) {
    rig.trigger("mnuConnectNeedleTest");
    EXPECT_EQ(rig.item("mnuConnectNeedleTest")->text(),
              runs ? "Needle Test - Stop" : "Needle Test - Start");
    EXPECT_EQ(rig.instrument().state().NeedleTest, runs);
  }
}

TEST_F(Connection, ASilentMeterTurnsTheStatusRedWithoutABox) {
  for (const bool known : {false, true}) {
    rig.startLive({}, known ? "3A" : "77");
    EXPECT_EQ(rig.status(), "Input OK");
    EXPECT_EQ(sent("R"), known) << "an unknown model is told nothing";
    if (known) rig.port.feed("P6590\r");
    if (known) rig.port.lose();
    rig.pass(std::chrono::milliseconds{2400});
    EXPECT_EQ(rig.status(), "Input Error");
    EXPECT_EQ(rig.instrument().state().ModeColor, kRed);
    EXPECT_EQ(ProgramRig::openDialog(), nullptr);
    EXPECT_EQ(rig.instrument().programState(), 1);
  }
  rig.trigger("mnuConnectionConnect");
  EXPECT_EQ(rig.status(), "Input OK");
}

TEST_F(Connection, EachConnectionIsCapturedInAFileOfItsOwn) {
  rig.captureFile = rig.file("capture");
  rig.startLive();
  rig.port.feed("P6590\r");
  rig.trigger("mnuSettingsNeedleWidth_2");
  EXPECT_TRUE(rig.contains(rig.captureFile, "\"rx\": \"P6590\\r\""));
  EXPECT_TRUE(rig.contains(rig.captureFile, "\"Needle_Width\", \"value\": 2"));
  rig.trigger("mnuConnectionConnect");
  rig.port.feed("P1111\r");
  EXPECT_TRUE(rig.contains(rig.captureFile + "-2", "P1111"));
  EXPECT_FALSE(rig.contains(rig.captureFile, "P1111"));
}

TEST_F(Connection, ACaptureThatCannotBeWrittenIsSaidOnce) {
  rig.captureFile = rig.file("missing/capture");
  rig.startLive();
  rig.press("msgCapture", QMessageBox::Ok);
  rig.trigger("mnuConnectionConnect");
  EXPECT_TRUE(rig.instrument().meterFound());
  EXPECT_EQ(ProgramRig::openDialog(), nullptr);
}

}  // namespace
}  // namespace qv3::test
