#include <gtest/gtest.h>

#include <QAccessible>
#include <QContextMenuEvent>
#include <QListView>
#include <QMenu>
#include <QSignalSpy>

#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

/// A user without a mouse: every key goes to the window, as the screen's server sends it.
struct Keyboard : testing::Test {
  void SetUp() override {
    rig.files.folders = {"/rec"};
    rig.plugIn(1, "3A");
    rig.leaveConfig(0, 1, 20);
    rig.leaveSettings(
        "[Recording]\r\nAudioEnable=False\r\nSavePath=/rec/\r\nSuffixType=0\r\n"
        "[Format]\r\nGraphVisible=1\r\n");
    rig.start();
    rig.window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&rig.window()));
    key(Qt::Key_Shift);  // the first key acts once some key was released
    for (int sample = 0; sample < 3; ++sample) rig.port.feed("P6590\r");
    ASSERT_TRUE(QTest::qWaitFor([this] { return widget("cmdRecord")->isEnabled(); }));
  }

  void key(Qt::Key code, Qt::KeyboardModifiers with = Qt::NoModifier) {
    QTest::keyClick(rig.window().windowHandle(), code, with);
  }
  QString focused() const { return rig.window().focusWidget()->objectName(); }
  QWidget* widget(const char* name) const {
    return rig.window().findChild<QWidget*>(QLatin1String(name));
  }
  /// Tab until it has the focus.
  void tabTo(const char* name) {
    for (int step = 0; step < 30 && focused() != QLatin1String(name); ++step) key(Qt::Key_Tab);
    ASSERT_EQ(focused(), QLatin1String(name));
  }
  bool popup() const { return QApplication::activePopupWidget() != nullptr; }
  bool frames(const std::function<bool()>& until) {
    return QTest::qWaitFor([&] {
      rig.port.feed("P7000\r");
      return until();
    });
  }
  bool during(Operation operation) const { return rig.instrument().operation() == operation; }
  /// Leaves a recorded session of at least so many samples.
  void record(std::size_t samples) {
    key(Qt::Key_R);
    ASSERT_TRUE(frames([&] { return rig.instrument().recorder().records().count() >= samples; }));
    key(Qt::Key_S);
    ASSERT_TRUE(frames([&] { return during(Operation::None); }));
    ASSERT_TRUE(QTest::qWaitFor([&] { return widget("cmdPlay")->isEnabled(); }));
  }
  BarState bar() const { return rig.window().transport().bar().shown(); }

  ProgramRig rig;
};

TEST_F(Keyboard, TabVisitsAllThatCanBePressedAndComesBack) {
  QStringList wanted;
  for (const QWidget* each : rig.window().centralWidget()->findChildren<QWidget*>()) {
    auto* face = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(each));
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
  const auto pictures = [this](QWidget* of) {
    rig.window().setFocus();
    const QImage without = of->grab().toImage();
    of->setFocus(Qt::TabFocusReason);
    return std::pair{without, of->grab().toImage()};
  };
  for (const char* name : {"picMeterPanel", "picBD", "picKnob", "cmdRecord", "picFilePosition"}) {
    const auto [without, with] = pictures(widget(name));
    EXPECT_NE(without, with) << name;
  }
}

TEST_F(Keyboard, TheInstrumentsKeysKeepTheirMeaningWhateverHasTheFocus) {
  for (QWidget* each : rig.window().centralWidget()->findChildren<QWidget*>()) {
    if ((each->focusPolicy() & Qt::TabFocus) == 0 || !each->isEnabled()) continue;
    each->setFocus();
    const std::string name = each->objectName().toStdString();
    const bool counting = rig.instrument().state().BdRunning;
    key(Qt::Key_C);
    EXPECT_NE(rig.instrument().state().BdRunning, counting) << name;
    const int knob = rig.settings().KnobPosition;
    key(Qt::Key_Up);
    EXPECT_GT(rig.settings().KnobPosition, knob) << name;
    key(Qt::Key_Down);
    for (int sample = 0; sample < 3; ++sample) rig.port.feed("P6590\r");
    ASSERT_FALSE(rig.instrument().state().SetRequest) << name;
    key(Qt::Key_Space);
    EXPECT_TRUE(rig.instrument().state().SetRequest) << name;
    EXPECT_TRUE(during(Operation::None)) << name;
    EXPECT_EQ(rig.dialog("frmRec"), nullptr) << name;
  }
}

TEST_F(Keyboard, ReturnPressesWhatHasTheFocus) {
  tabTo("picBD");
  key(Qt::Key_Return);
  EXPECT_TRUE(rig.instrument().state().BdRunning);
  tabTo("picMeterPanel");
  key(Qt::Key_Enter);
  EXPECT_TRUE(rig.instrument().state().SetRequest);
  tabTo("cmdSave");
  key(Qt::Key_Return);
  EXPECT_TRUE(rig.opens("frmRec"));
}

/// A held key's repeats may come as a release and a press of one moment.
TEST_F(Keyboard, ReturnThatIsHeldPressesOnce) {
  tabTo("picBD");
  QSignalSpy presses(&rig.window().bd(), &BdPanel::pressed);
  const auto send = [this](QEvent::Type type, quint64 time) {
    QKeyEvent event(type, Qt::Key_Return, Qt::NoModifier);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(rig.window().windowHandle(), &event);
  };
  send(QEvent::KeyPress, 1000);
  for (quint64 time = 1500; time < 1800; time += 30) {
    send(QEvent::KeyRelease, time);
    send(QEvent::KeyPress, time);
  }
  send(QEvent::KeyRelease, 2000);
  EXPECT_EQ(presses.count(), 1);
  send(QEvent::KeyPress, 2100);
  EXPECT_EQ(presses.count(), 2);
}

TEST_F(Keyboard, TheKnobTurnsToEveryPosition) {
  tabTo("picKnob");
  key(Qt::Key_Home);
  for (int position = 0; position <= 63; ++position) {
    EXPECT_EQ(rig.settings().KnobPosition, position);
    key(Qt::Key_Right);
  }
  EXPECT_EQ(rig.settings().KnobPosition, 63);
  key(Qt::Key_Left);
  EXPECT_EQ(rig.settings().KnobPosition, 62);
  key(Qt::Key_End);
  EXPECT_EQ(rig.settings().KnobPosition, 63);
}

TEST_F(Keyboard, ARecordingTakesTheFocusBackToWhereItWasStarted) {
  tabTo("cmdRecord");
  key(Qt::Key_Return);
  ASSERT_TRUE(frames([&] { return rig.instrument().recorder().records().count() >= 60; }));
  EXPECT_NE(focused(), "cmdRecord");
  key(Qt::Key_S);
  ASSERT_TRUE(frames([&] { return during(Operation::None); }));
  EXPECT_TRUE(QTest::qWaitFor([&] { return focused() == "cmdRecord"; }));
}

TEST_F(Keyboard, AUserWhoWentElsewhereIsLeftThere) {
  tabTo("cmdRecord");
  key(Qt::Key_Return);
  ASSERT_TRUE(frames([&] { return rig.instrument().recorder().records().count() >= 60; }));
  tabTo("picKnob");
  key(Qt::Key_S);
  ASSERT_TRUE(frames([&] { return during(Operation::None); }));
  ASSERT_TRUE(QTest::qWaitFor([&] { return widget("cmdRecord")->isEnabled(); }));
  EXPECT_EQ(focused(), "picKnob");
}

TEST_F(Keyboard, ArrowsOnThePositionBarMarkTheRangeAndTheMenuKeyTakesItBack) {
  record(100);
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
  EXPECT_EQ(rig.settings().KnobPosition, 20);
}

TEST_F(Keyboard, ArrowsOnThePositionBarSeekWhilePlaying) {
  record(100);
  tabTo("picFilePosition");
  key(Qt::Key_P);
  ASSERT_TRUE(during(Operation::Playing));
  key(Qt::Key_Shift);  // the same key within a millisecond is a held one
  key(Qt::Key_P);
  ASSERT_TRUE(QTest::qWaitFor([&] { return during(Operation::Paused); }));
  key(Qt::Key_Home);
  const double begin = bar().place.value_or(-1);
  key(Qt::Key_PageDown);
  EXPECT_NEAR(bar().place.value_or(-1), begin + 100, 20);
}

TEST_F(Keyboard, TheMenuKeyIsTheRightButton) {
  QSignalSpy numbered(&rig.window().transport(), &TransportPanel::numberedFilesRequested);
  const auto menuKey = [this](const char* on) {
    widget(on)->setFocus();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {1, 1}, {});
    QCoreApplication::sendEvent(widget(on), &event);
  };
  menuKey("cmdLoad");
  EXPECT_EQ(numbered.count(), 1);
  menuKey("picMeterPanel");
  EXPECT_TRUE(rig.instrument().state().SetRequest);
  menuKey("picBD");
  EXPECT_TRUE(rig.instrument().state().BdRunning);
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
  auto* view = rig.window().menuBar()->findChild<QMenu*>("mnuView");
  key(Qt::Key_V, Qt::AltModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return view->isVisible(); }));
}

TEST_F(Keyboard, F10GoesToTheMenus) {
  QMenuBar& bar = *rig.window().menuBar();
  auto* file = bar.findChild<QMenu*>("mnuFile");
  auto* settings = bar.findChild<QMenu*>("mnuSettings");
  tabTo("picKnob");
  const QImage idle = bar.grab().toImage();
  key(Qt::Key_F10);
  ASSERT_TRUE(QTest::qWaitFor([&] { return file->isVisible(); }));
  QTest::keyClick(file, Qt::Key_C);
  EXPECT_FALSE(rig.instrument().state().BdRunning) << "a letter in a menu is the menu's";
  QTest::keyClick(file, Qt::Key_Escape);
  ASSERT_TRUE(QTest::qWaitFor([&] { return !file->isVisible(); }));
  EXPECT_EQ(bar.activeAction(), file->menuAction());
  EXPECT_NE(bar.grab().toImage(), idle) << "it shows which one a key would open";
  key(Qt::Key_Right);
  EXPECT_EQ(bar.activeAction(), settings->menuAction());
  key(Qt::Key_Escape);
  EXPECT_EQ(focused(), "picKnob");
  key(Qt::Key_C);
  EXPECT_TRUE(rig.instrument().state().BdRunning) << "the window has its keys again";
}

}  // namespace
}  // namespace qv3::test
