#include <gtest/gtest.h>

#include <QLineEdit>
#include <QMenu>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

class Keys : public testing::Test {
 protected:
  void SetUp() override {
    rig.plugIn(1, "3A");
    rig.leaveConfig(0, 1, 20);
    rig.start();
    rig.window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&rig.window()));
    release(Qt::Key_Shift);  // the first key acts once some key was released
  }

  void press(Qt::Key key, bool repeated = false, Qt::KeyboardModifiers with = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, with, QString(), repeated);
    QCoreApplication::sendEvent(rig.window().windowHandle(), &event);
  }
  void release(Qt::Key key, bool repeated = false) {
    QKeyEvent event(QEvent::KeyRelease, key, Qt::NoModifier, QString(), repeated);
    QCoreApplication::sendEvent(rig.window().windowHandle(), &event);
  }

  bool counting() const { return rig.instrument().state().BdRunning; }

  ProgramRig rig;
};

TEST_F(Keys, AHeldKeyActsOnceAndArrowsGoOn) {
  press(Qt::Key_C);
  ASSERT_TRUE(counting());
  release(Qt::Key_C, true);
  press(Qt::Key_C, true);
  EXPECT_TRUE(counting());
  const int before = rig.settings().KnobPosition;
  press(Qt::Key_Up);
  press(Qt::Key_Up, true);
  EXPECT_EQ(rig.settings().KnobPosition, before + 4);  // two labels on
  press(Qt::Key_Down);
  EXPECT_LT(rig.settings().KnobPosition, before + 4);
  release(Qt::Key_C);
  press(Qt::Key_C);
  EXPECT_FALSE(counting());
}

TEST_F(Keys, ARepeatThatComesAsReleaseAndPressIsOne) {
  const auto send = [this](QEvent::Type type, Qt::Key key, quint64 time) {
    QKeyEvent event(type, key, Qt::NoModifier);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(rig.window().windowHandle(), &event);
  };
  const auto hold = [&send](Qt::Key key, quint64 from) {
    send(QEvent::KeyPress, key, from);
    for (quint64 time = from + 660; time < from + 860; time += 40) {
      send(QEvent::KeyRelease, key, time);
      send(QEvent::KeyPress, key, time);
    }
    send(QEvent::KeyRelease, key, from + 870);
  };
  hold(Qt::Key_C, 1000);
  EXPECT_TRUE(counting()) << "once";
  hold(Qt::Key_C, 3000);
  EXPECT_FALSE(counting());
  const int before = rig.settings().KnobPosition;
  hold(Qt::Key_Up, 5000);
  EXPECT_GT(rig.settings().KnobPosition, before + 5) << "every press turns";
}

TEST_F(Keys, LosingTheFocusIsTheReleaseOfAHeldKey) {
  press(Qt::Key_C);
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  rig.window().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&rig.window()));
  press(Qt::Key_C);
  EXPECT_FALSE(counting());
}

TEST_F(Keys, ForeignModifiersLeaveAKeyAlone) {
  for (const auto with : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
    press(Qt::Key_C, false, with);
    EXPECT_FALSE(counting());
  }
  press(Qt::Key_C, false, Qt::ShiftModifier);
  EXPECT_TRUE(counting());
}

TEST_F(Keys, NoControlSeesAKeyThatMeansSomething) {
  QLineEdit edit(rig.window().centralWidget());
  edit.show();
  edit.setFocus();
  QTest::keyClick(rig.window().windowHandle(), Qt::Key_C);
  QTest::keyClick(rig.window().windowHandle(), Qt::Key_X);
  EXPECT_TRUE(counting());
  EXPECT_EQ(edit.text(), "x");
}

TEST_F(Keys, AnOpenMenuKeepsItsKeys) {
  auto* menu = rig.window().menuBar()->findChild<QMenu*>("mnuFile");
  menu->popup({0, 0});
  ASSERT_TRUE(QTest::qWaitFor([&] { return menu->isVisible(); }));
  press(Qt::Key_C);
  menu->close();
  EXPECT_FALSE(counting());
}

TEST_F(Keys, FreezeMovesItsMarksAndShowsAMessageForAWhile) {
  press(Qt::Key_F);
  release(Qt::Key_F);
  EXPECT_TRUE(rig.settings().FreezeEnable);
  EXPECT_TRUE(rig.item("mnuSetBmFreezeOn")->isChecked());
  EXPECT_FALSE(rig.item("mnuSetBmFreezeOff")->isChecked());
  EXPECT_TRUE(rig.window().dial().accessibleValue().contains("Freeze ON"));
  press(Qt::Key_F);
  EXPECT_TRUE(rig.settings().FreezeEnable);
  EXPECT_TRUE(QTest::qWaitFor([this] {
    return rig.window().dial().accessibleValue().contains("Input");
  })) << "what is beneath shows again";
}

TEST_F(Keys, TheMouseWorksPanelKnobAndCounter) {
  for (int sample = 0; sample < 3; ++sample) rig.port.feed("P6590\r");
  ASSERT_FALSE(rig.instrument().state().SetRequest);
  QTest::mouseClick(&rig.window().dial(), Qt::RightButton);
  EXPECT_TRUE(rig.instrument().state().SetRequest);

  KnobPanel& knob = rig.window().knob();
  QTest::mouseClick(&knob, Qt::LeftButton, {}, {knob.width() * 3 / 4, knob.height() - 2});
  EXPECT_EQ(rig.settings().KnobPosition, 63);

  QTest::mouseClick(&rig.window().bd(), Qt::LeftButton);
  EXPECT_TRUE(counting());
  EXPECT_EQ(rig.window().bd().accessibleValue(), "0.0, running");
}

}  // namespace
}  // namespace qv3::test
