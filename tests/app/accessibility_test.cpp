#include <gtest/gtest.h>

#include <QAccessible>
#include <QMessageBox>
#include <QPushButton>
#include <QSet>

#include "tests/app/accessibletree.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

std::string nameOf(const QAccessibleInterface& face) {
  return face.text(QAccessible::Name).toStdString();
}

/// A program with a meter, graph and recording panel shown.
struct Accessibility : testing::Test {
  void SetUp() override {
    rig.plugIn(1, "3A");
    rig.leaveConfig(0, 1, 20);
    rig.leaveSettings("[Format]\r\nGraphVisible=1\r\nClockType=3\r\nDateType=1\r\n");
    rig.start();
  }

  QAccessibleInterface& faceOf(const char* name) {
    auto* widget = rig.window().findChild<QWidget*>(QLatin1String(name));
    return *QAccessible::queryAccessibleInterface(widget);
  }
  QString partOf(QAccessibleInterface& face, const char* name) {
    for (int index = 0; index < face.childCount(); ++index) {
      if (nameOf(*face.child(index)) == name) {
        return face.child(index)->text(QAccessible::Value);
      }
    }
    return QStringLiteral("none");
  }

  ProgramRig rig;
};

// That nothing is without a name is checked of every window that any of these tests shows: see
// main.cpp.

TEST(AccessibleTree, TellsWhatHasNoName) {
  QWidget window;
  window.setObjectName("frmTest");
  window.setWindowTitle("Test");
  new QPushButton("Named", &window);
  EXPECT_EQ(namelessIn(window), std::vector<std::string>());
  auto* nameless = new QPushButton(&window);
  nameless->setObjectName("cmdNameless");
  ASSERT_EQ(namelessIn(window).size(), 1U);
  EXPECT_EQ(namelessIn(window)[0].find("/QWidget frmTest/QPushButton cmdNameless"), 0U);
}

TEST_F(Accessibility, EveryPartOfTheMainWindowIsThere) {
  QSet<QString> named;
  walkAccessibles(rig.window(), [&](const QAccessibleInterface& face, const std::string&) {
    named.insert(face.text(QAccessible::Name));
  });
  for (const char* name : {"Meter dial",
                           "Needle",
                           "Alert lamp",
                           "Base reading",
                           "Mode",
                           "Clock",
                           "Sensitivity",
                           "Body motion counter",
                           "Strip chart",
                           "Position",
                           "Record",
                           "Stop",
                           "Play",
                           "Rev",
                           "Fwd",
                           "Single",
                           "Load",
                           "Settings",
                           "Numbered recordings",
                           "Play time",
                           "Total time",
                           "Record mode",
                           "Tags",
                           "No File Loaded",
                           "Load Settings",
                           "Comm1:"}) {
    EXPECT_TRUE(named.contains(QLatin1String(name))) << name;
  }
}

TEST_F(Accessibility, ABoxTellsItsTextAndItsKind) {
  Dialogs dialogs(rig.window());
  const Notice notice{"msgTest", "Title", "What happened."};
  dialogs.error(notice, [] {});
  dialogs.warning(notice, [] {});
  dialogs.question(notice, [](bool) {});
  dialogs.choice(notice, {"One", "Other"}, [](int) {});
  QSet<QString> named;
  for (QWidget* box : rig.window().findChildren<QMessageBox*>()) {
    ASSERT_TRUE(box->isVisible());
    walkAccessibles(*box, [&](const QAccessibleInterface& face, const std::string&) {
      named.insert(face.text(QAccessible::Name));
    });
  }
  for (const char* name :
       {"Title", "What happened.", "OK", "One", "Error", "Warning", "Question"}) {
    EXPECT_TRUE(named.contains(QLatin1String(name))) << name;
  }
}

TEST_F(Accessibility, SurfacesTellWhatTheyShow) {
  QAccessibleInterface& dial = faceOf("picMeterPanel");
  for (int sample = 0; sample < 3; ++sample) rig.port.feed("P6590\r");
  const QString words = dial.text(QAccessible::Value);
  EXPECT_TRUE(words.startsWith("Needle at SET, base ")) << words.toStdString();
  EXPECT_TRUE(words.endsWith(", lamp SET, LINK, Input OK")) << words.toStdString();
  EXPECT_EQ(partOf(dial, "Needle"), "Needle at SET");
  EXPECT_EQ(partOf(dial, "Alert lamp"), "SET");
  EXPECT_EQ(partOf(dial, "Mode"), "LINK, Input OK");
  EXPECT_TRUE(partOf(dial, "Clock").startsWith("15:20, "));
  EXPECT_TRUE(QTest::qWaitFor([&] { return partOf(dial, "Alert lamp") == "off"; }));
}

TEST_F(Accessibility, KnobIsReadAndTurnedAsANumber) {
  QAccessibleInterface& knob = faceOf("picKnob");
  EXPECT_EQ(knob.role(), QAccessible::Dial);
  ASSERT_NE(knob.valueInterface(), nullptr);
  knob.valueInterface()->setCurrentValue(7.2);
  EXPECT_EQ(rig.settings().KnobPosition, 28);
  EXPECT_EQ(knob.valueInterface()->currentValue().toDouble(), 7.0);
  EXPECT_EQ(knob.text(QAccessible::Value), "7.0");
  knob.actionInterface()->doAction(QAccessibleActionInterface::decreaseAction());
  EXPECT_EQ(rig.settings().KnobPosition, 27);
}

TEST_F(Accessibility, AssistiveTechnologyPressesWhatTheMousePresses) {
  const auto press = [](QAccessibleInterface& face) {
    ASSERT_NE(face.actionInterface(), nullptr);
    ASSERT_TRUE(
        face.actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    face.actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  };
  for (int sample = 0; sample < 3; ++sample) rig.port.feed("P6590\r");
  ASSERT_FALSE(rig.instrument().state().SetRequest);
  press(faceOf("picMeterPanel"));
  EXPECT_TRUE(rig.instrument().state().SetRequest);
  press(faceOf("picBD"));
  EXPECT_TRUE(rig.instrument().state().BdRunning);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !faceOf("cmdSave").state().disabled; }));
  press(faceOf("cmdSave"));
  EXPECT_TRUE(rig.opens("frmRec"));
}

}  // namespace
}  // namespace qv3::test
