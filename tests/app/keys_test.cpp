#include <gtest/gtest.h>

#include <QAccessible>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

/// Every key goes to the window, as the screen's server sends it.
struct Keys : testing::Test {
  void SetUp() override {
    rig.files.folders = {"/rec"};
    rig.startLive(
        "[Recording]\r\nAudioEnable=False\r\nSavePath=/rec/\r\nSuffixType=0\r\n"
        "[Format]\r\nGraphVisible=1\r\n",
        "3A", 20);
    rig.window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&rig.window()));
    send(QEvent::KeyRelease, Qt::Key_Shift);  // the first key acts once some key was released
    rig.frames(3, "P6590\r");
    ASSERT_FALSE(wantsSet());
  }

  void send(QEvent::Type type, Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier,
            bool repeated = false, quint64 time = 0) {
    QKeyEvent event(type, key, with, QString(), repeated);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(rig.window().windowHandle(), &event);
  }
  /// The repeats of a held key come marked, or as a release and a press of one moment.
  void hold(Qt::Key key, bool marked) {
    send(QEvent::KeyPress, key, {}, false, m_time += 1000);
    for (int repeat = 0; repeat < 5; ++repeat) {
      send(QEvent::KeyRelease, key, {}, marked, m_time += 40);
      send(QEvent::KeyPress, key, {}, marked, m_time += marked ? 1 : 0);
    }
    send(QEvent::KeyRelease, key, {}, false, m_time += 10);
  }
  void key(Qt::Key code, Qt::KeyboardModifiers with = Qt::NoModifier) {
    QTest::keyClick(rig.window().windowHandle(), code, with);
  }

  bool counting() const { return rig.instrument().state().BdRunning; }
  bool wantsSet() const { return rig.instrument().state().SetRequest; }
  int knob() const { return rig.settings().KnobPosition; }

  ProgramRig rig;

 private:
  quint64 m_time = 0;
};

TEST_F(Keys, AHeldKeyActsOnceAndArrowsGoOn) {
  QSignalSpy presses(&rig.window().bd(), &BdPanel::pressed);
  for (const bool marked : {true, false}) {
    const bool counted = counting();
    hold(Qt::Key_C, marked);
    EXPECT_NE(counting(), counted) << marked;
    const int before = knob();
    hold(Qt::Key_Up, marked);
    EXPECT_GT(knob(), before + 5) << marked;
    rig.window().bd().setFocus();
    presses.clear();
    hold(Qt::Key_Return, marked);
    EXPECT_EQ(presses.count(), 1) << marked;
  }
}

TEST_F(Keys, LosingTheFocusIsTheReleaseOfAHeldKey) {
  send(QEvent::KeyPress, Qt::Key_C);
  ASSERT_TRUE(counting());
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
  rig.window().activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&rig.window()));
  send(QEvent::KeyPress, Qt::Key_C);
  EXPECT_FALSE(counting());
}

TEST_F(Keys, ForeignModifiersLeaveAKeyAlone) {
  for (const auto with : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
    send(QEvent::KeyPress, Qt::Key_C, with);
    EXPECT_FALSE(counting());
  }
  send(QEvent::KeyPress, Qt::Key_C, Qt::ShiftModifier);
  EXPECT_TRUE(counting());
}

TEST_F(Keys, NoControlSeesAKeyThatMeansSomething) {
  QLineEdit edit(rig.window().centralWidget());
  edit.show();
  edit.setFocus();
  key(Qt::Key_C);
  key(Qt::Key_X);
  EXPECT_TRUE(counting());
  EXPECT_EQ(edit.text(), "x");
}

TEST_F(Keys, FreezeMovesItsMarksAndShowsAMessageForAWhile) {
  for (int presses = 0; presses < 2; ++presses) {  // the second one while the message shows
    send(QEvent::KeyPress, Qt::Key_F);
    send(QEvent::KeyRelease, Qt::Key_F);
    EXPECT_TRUE(rig.settings().FreezeEnable);
  }
  EXPECT_TRUE(rig.item("mnuSetBmFreezeOn")->isChecked());
  EXPECT_FALSE(rig.item("mnuSetBmFreezeOff")->isChecked());
  EXPECT_TRUE(rig.dialWords().contains("Freeze ON"));
  rig.pass(std::chrono::milliseconds{1500});
  EXPECT_TRUE(rig.dialWords().contains("Input")) << "what is beneath shows again";
}

TEST_F(Keys, TheMouseWorksPanelKnobAndCounter) {
  QTest::mouseClick(&rig.window().dial(), Qt::RightButton);
  EXPECT_TRUE(wantsSet());
  KnobPanel& panel = rig.window().knob();
  QTest::mouseClick(&panel, Qt::LeftButton, {}, {panel.width() * 3 / 4, panel.height() - 2});
  EXPECT_EQ(knob(), 63);
  QTest::mouseClick(&rig.window().bd(), Qt::LeftButton);
  EXPECT_TRUE(counting());
  EXPECT_EQ(rig.window().bd().accessibleValue(), "0.0, running");
}

/// A user without a mouse.
struct Keyboard : Keys {
  QString focused() const { return rig.window().focusWidget()->objectName(); }
  QWidget* widget(const char* name) const { return rig.find<QWidget>(name); }
  /// Tab until it has the focus.
  void tabTo(const char* name) {
    for (int step = 0; step < 30 && focused() != QLatin1String(name); ++step) key(Qt::Key_Tab);
    ASSERT_EQ(focused(), QLatin1String(name));
  }
  bool popup() const { return QApplication::activePopupWidget() != nullptr; }
  /// From wherever the focus is, and `meanwhile` something else.
  void record(const std::function<void()>& meanwhile = [] {}) {
    key(Qt::Key_R);
    rig.frames(160);
    ASSERT_EQ(rig.operation(), Operation::Recording);
    meanwhile();
    key(Qt::Key_S);
    rig.frames(60);
    ASSERT_EQ(rig.operation(), Operation::None);
  }
  BarState bar() const { return rig.window().transport().bar().shown(); }
};

TEST_F(Keyboard, TabVisitsAllThatCanBePressedAndComesBack) {
  QStringList wanted;
  for (QWidget* each : rig.window().centralWidget()->findChildren<QWidget*>()) {
    auto* face = QAccessible::queryAccessibleInterface(each);
    const bool acts =
        face->valueInterface() != nullptr ||
        (face->actionInterface() != nullptr && face->actionInterface()->actionNames().contains(
                                                   QAccessibleActionInterface::pressAction()));
    if (acts && each->isEnabled() && each->isVisible()) wanted << each->objectName();
  }
  EXPECT_TRUE(wanted.contains("picKnob") && wanted.contains("cmdRecord"));
  const QString first = focused();
  EXPECT_EQ(first, "picMeterPanel") << "where Return does no harm";
  QStringList visited;
  do {
    visited << focused();
    key(Qt::Key_Tab);
  } while (focused() != first && visited.size() < 40);
  for (const QString& name : wanted) EXPECT_TRUE(visited.contains(name)) << name.toStdString();
  key(Qt::Key_Tab, Qt::ShiftModifier);
  EXPECT_EQ(focused(), visited.last());
}

TEST_F(Keyboard, TheFocusIsSeenWhereverItIs) {
  for (const char* name : {"picMeterPanel", "picBD", "picKnob", "cmdRecord", "picFilePosition"}) {
    rig.window().setFocus();
    const QImage without = widget(name)->grab().toImage();
    widget(name)->setFocus(Qt::TabFocusReason);
    EXPECT_NE(without, widget(name)->grab().toImage()) << name;
  }
}

TEST_F(Keyboard, TheInstrumentsKeysKeepTheirMeaningWhateverHasTheFocus) {
  for (QWidget* each : rig.window().centralWidget()->findChildren<QWidget*>()) {
    if ((each->focusPolicy() & Qt::TabFocus) == 0 || !each->isEnabled()) continue;
    each->setFocus();
    SCOPED_TRACE(each->objectName().toStdString());
    const bool counted = counting();
    key(Qt::Key_C);
    EXPECT_NE(counting(), counted);
    const int before = knob();
    key(Qt::Key_Up);
    const int above = knob();
    EXPECT_GT(above, before);
    key(Qt::Key_Down);
    EXPECT_LT(knob(), above);
    rig.frames(3, "P6590\r");
    ASSERT_FALSE(wantsSet());
    key(Qt::Key_Space);
    EXPECT_TRUE(wantsSet());
    EXPECT_EQ(rig.operation(), Operation::None);
    EXPECT_EQ(ProgramRig::openDialog(), nullptr);
  }
}

TEST_F(Keyboard, ReturnPressesWhatHasTheFocusAndTheMenuKeyIsTheRightButton) {
  tabTo("picMeterPanel");
  key(Qt::Key_Enter);
  EXPECT_TRUE(wantsSet());
  tabTo("picBD");
  key(Qt::Key_Return);
  EXPECT_TRUE(counting());
  QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, {1, 1}, {});
  QCoreApplication::sendEvent(widget("picBD"), &menuKey);
  EXPECT_FALSE(counting());
  QSignalSpy numbered(&rig.window().transport(), &TransportPanel::numberedFilesRequested);
  QCoreApplication::sendEvent(widget("cmdLoad"), &menuKey);
  EXPECT_EQ(numbered.count(), 1);
  tabTo("cmdSave");
  key(Qt::Key_Return);
  EXPECT_TRUE(rig.opens("frmRec"));
}

TEST_F(Keyboard, TheKnobTurnsByOnePositionOrAllTheWay) {
  tabTo("picKnob");
  const std::pair<Qt::Key, int> rows[] = {
      {Qt::Key_Left, 19}, {Qt::Key_Right, 20}, {Qt::Key_Home, 0},   {Qt::Key_Left, 0},
      {Qt::Key_Right, 1}, {Qt::Key_End, 63},   {Qt::Key_Right, 63}, {Qt::Key_Left, 62}};
  for (const auto& [code, position] : rows) {
    key(code);
    EXPECT_EQ(knob(), position) << code;
  }
}

TEST_F(Keyboard, ARecordingTakesTheFocusBackUnlessTheUserWentElsewhere) {
  for (const bool went : {false, true}) {
    rig.turnOver();
    tabTo("cmdRecord");
    record([&] {
      EXPECT_NE(focused(), "cmdRecord");
      if (went) tabTo("picKnob");
    });
    ASSERT_TRUE(widget("cmdRecord")->isEnabled());
    EXPECT_EQ(focused(), went ? "picKnob" : "cmdRecord");
    rig.click("cmdSave");
    rig.pass(std::chrono::seconds{1});
  }
}

TEST_F(Keyboard, ArrowsOnThePositionBarMarkTheRangeAndTheMenuKeyTakesItBack) {
  record();
  tabTo("picFilePosition");
  key(Qt::Key_Right);
  EXPECT_EQ(bar().range, (BarRange{10, 1000}));
  key(Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(bar().range, (BarRange{10, 990}));
  key(Qt::Key_F10, Qt::ShiftModifier);
  EXPECT_EQ(bar().range, (BarRange{0, 1000}));
  for (int step = 0; step < 200; ++step) key(Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(bar().range.from, 0);
  EXPECT_EQ(bar().range.to, bar().shortest) << "and not the whole session again";
  EXPECT_EQ(knob(), 20);
}

TEST_F(Keyboard, ArrowsOnThePositionBarSeekWhilePlaying) {
  record();
  tabTo("picFilePosition");
  key(Qt::Key_P);
  ASSERT_EQ(rig.operation(), Operation::Playing);
  key(Qt::Key_Shift);  // the same key within a millisecond is a held one
  key(Qt::Key_P);
  ASSERT_EQ(rig.operation(), Operation::Paused);
  key(Qt::Key_Home);
  const double begin = bar().place.value_or(-1);
  key(Qt::Key_PageDown);
  EXPECT_NEAR(bar().place.value_or(-1), begin + 100, 20);
}

TEST_F(Keyboard, F4OpensTheNumberedFilesFromAnywhere) {
  TransportPanel& panel = rig.window().transport();
  tabTo("picKnob");
  key(Qt::Key_F4);
  EXPECT_FALSE(popup()) << "there are none";
  EXPECT_EQ(focused(), "picKnob");
  panel.setNumberedFiles({"001", "002"}, -1);
  QSignalSpy chosen(&panel, &TransportPanel::numberedFileChosen);
  key(Qt::Key_F4);
  ASSERT_TRUE(popup());
  QWidget* list = QApplication::focusWidget();
  QTest::keyClick(list, Qt::Key_Down);
  QTest::keyClick(list, Qt::Key_Return);
  ASSERT_EQ(chosen.count(), 1);
}

TEST_F(Keyboard, AMenuOpensByItsLetter) {
  auto* view = rig.find<QMenu>("mnuView");
  key(Qt::Key_V, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return view->isVisible(); }));
}

TEST_F(Keyboard, F10GoesToTheMenus) {
  QMenuBar& bar = *rig.window().menuBar();
  auto* file = rig.find<QMenu>("mnuFile");
  tabTo("picKnob");
  const QImage idle = bar.grab().toImage();
  key(Qt::Key_F10);
  ASSERT_TRUE(QTest::qWaitFor([&] { return file->isVisible(); }));
  send(QEvent::KeyPress, Qt::Key_C);
  send(QEvent::KeyRelease, Qt::Key_C);
  EXPECT_FALSE(counting()) << "a letter in a menu is the menu's";
  QTest::keyClick(file, Qt::Key_Escape);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !file->isVisible(); }));
  EXPECT_EQ(bar.activeAction(), file->menuAction());
  EXPECT_NE(bar.grab().toImage(), idle) << "it shows which one a key would open";
  key(Qt::Key_Right);
  EXPECT_EQ(bar.activeAction(), rig.find<QMenu>("mnuSettings")->menuAction());
  key(Qt::Key_Escape);
  EXPECT_EQ(focused(), "picKnob");
  key(Qt::Key_C);
  EXPECT_TRUE(counting()) << "the window has its keys again";
}

}  // namespace
}  // namespace qv3::test
