#include <gtest/gtest.h>

#include <QAccessible>
#include <QPushButton>
#include <QSet>

#include "tests/app/accessibletree.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

/// The names that assistive technology finds in a window.
QSet<QString> namesIn(QWidget& window) {
  QSet<QString> named;
  walkAccessibles(window, [&](const QAccessibleInterface& face, const std::string&) {
    named.insert(face.text(QAccessible::Name));
  });
  return named;
}

void expectNames(const QSet<QString>& named, const QString& wanted) {
  for (const QString& name : wanted.split(u',')) {
    EXPECT_TRUE(named.contains(name)) << name.toStdString();
  }
}

/// A program with a meter, graph and recording panel shown.
struct Accessibility : testing::Test {
  void SetUp() override {
    rig.startLive("[Format]\r\nGraphVisible=1\r\nClockType=3\r\nDateType=1\r\n", "3A", 20);
  }

  QAccessibleInterface& faceOf(const char* name) {
    return *QAccessible::queryAccessibleInterface(rig.find<QWidget>(name));
  }
  QString part(const char* name) {
    for (const SurfacePart& each : rig.window().dial().accessibleParts()) {
      if (each.name == name) return each.words;
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
  expectNames(namesIn(rig.window()),
              "Meter dial,Needle,Alert lamp,Base reading,Mode,Clock,Sensitivity,"
              "Body motion counter,Strip chart,Position,Record,Stop,Play,Rev,Fwd,Single,Load,"
              "Settings,Numbered recordings,Play time,Total time,Record mode,Tags,"
              "No File Loaded,Load Settings,Comm1:");
  for (const QWidget* widget : rig.window().centralWidget()->findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;  // the list of a closed combo box is the toolkit's own
    EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
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
    named.unite(namesIn(*box));
  }
  expectNames(named, "Title,What happened.,OK,One,Error,Warning,Question");
}

TEST_F(Accessibility, ALineIsNothingToPress) {
  rig.trigger("mnuhelpAbout");
  for (const char* name : {"Line1", "Line2"}) {
    EXPECT_EQ(faceOf(name).role(), QAccessible::Separator);
    EXPECT_EQ(faceOf(name).actionInterface()->actionNames(), QStringList());
  }
}

TEST_F(Accessibility, PartsOfTheDialTellWhatTheyShow) {
  rig.frames(3, "P6590\r");
  EXPECT_EQ(part("Needle"), "Needle at SET");
  EXPECT_EQ(part("Alert lamp"), "SET");
  EXPECT_EQ(part("Mode"), "LINK, Input OK");
  EXPECT_TRUE(part("Clock").startsWith("15:20, "));
  rig.pass(std::chrono::milliseconds{320});
  EXPECT_EQ(part("Alert lamp"), "off");
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
  rig.frames(3, "P6590\r");
  ASSERT_FALSE(rig.instrument().state().SetRequest);
  press(faceOf("picMeterPanel"));
  EXPECT_TRUE(rig.instrument().state().SetRequest);
  press(faceOf("picBD"));
  EXPECT_TRUE(rig.instrument().state().BdRunning);
  ASSERT_FALSE(faceOf("cmdSave").state().disabled);
  press(faceOf("cmdSave"));
  EXPECT_TRUE(rig.opens("frmRec"));
}

}  // namespace
}  // namespace qv3::test
