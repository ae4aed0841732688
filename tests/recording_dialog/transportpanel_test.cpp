#include "recording/dialog/transportpanel.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QPaintEvent>
#include <QSignalSpy>
#include <QTest>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace qv3 {
namespace {

class TransportPanelTest : public testing::Test {
 protected:
  TransportPanelTest() {
    m_panel.resize(m_panel.sizeHint());
    m_panel.show();
  }

  template <class T = QWidget>
  T* part(const char* name) {
    T* found = m_panel.findChild<T*>(QLatin1String(name));
    if (found == nullptr) ADD_FAILURE() << name;
    return found;
  }

  std::set<std::string> enabled() {
    std::set<std::string> names;
    for (const char* name : {"cmdRecord", "cmdStop", "cmdPlay", "cmdRev", "cmdFwd", "cmdLoop",
                             "cmdLoad", "cmdSave", "lblRecordMode", "lblLoadedFile", "cboFile"})
      if (part(name)->isEnabled()) names.insert(name);
    return names;
  }

  void enableAll() {
    TransportInputs inputs;
    inputs.programState = 1;
    inputs.allowed = {true, true, true, true, true, true, true, true, true, true};
    m_panel.setState(transportState(inputs));
    m_panel.setNumberedFiles({"000", "002"}, 0);
  }

  TransportPanel m_panel;
};

TEST_F(TransportPanelTest, WhatIsAllowedIsEnabledAndAnswersClickAndReturn) {
  using Allowed = TransportAllowed;
  using Panel = TransportPanel;
  struct Row {
    bool Allowed::*command;
    std::set<std::string> enabled;
    const char* name;
    void (Panel::*signal)();
  };
  const Row rows[] = {
      {&Allowed::record, {"cmdRecord"}, "cmdRecord", &Panel::recordClicked},
      {&Allowed::stop, {"cmdStop"}, "cmdStop", &Panel::stopClicked},
      {&Allowed::play, {"cmdPlay"}, "cmdPlay", &Panel::playClicked},
      {&Allowed::skip, {"cmdRev", "cmdFwd"}, "cmdRev", &Panel::revClicked},
      {&Allowed::skip, {"cmdRev", "cmdFwd"}, "cmdFwd", &Panel::fwdClicked},
      {&Allowed::loop, {"cmdLoop"}, "cmdLoop", &Panel::loopClicked},
      {&Allowed::load, {"cmdLoad", "cboFile"}, "cmdLoad", &Panel::loadClicked},
      {&Allowed::save, {"cmdSave"}, "cmdSave", &Panel::saveClicked},
      {&Allowed::saveFileAs, {"lblLoadedFile"}, "lblLoadedFile", &Panel::saveFileAsClicked},
  };
  m_panel.setNumberedFiles({"000", "001"}, 1);
  for (const Row& row : rows) {
    TransportInputs inputs;
    inputs.allowed.*row.command = true;
    m_panel.setState(transportState(inputs));
    EXPECT_EQ(enabled(), row.enabled) << row.name;
    QSignalSpy heard(&m_panel, row.signal);
    QTest::mouseClick(part(row.name), Qt::LeftButton);
    EXPECT_EQ(heard.count(), 1) << row.name;
    QTest::keyClick(part(row.name), Qt::Key_Return);
    EXPECT_EQ(heard.count(), 2) << row.name;
  }
}

TEST_F(TransportPanelTest, NumberedFilesAreAskedForByTheRightButtonAndChosenFromTheOpenListOnly) {
  QSignalSpy numbered(&m_panel, &TransportPanel::numberedFilesRequested);
  QTest::mouseClick(part("cmdLoad"), Qt::RightButton);
  EXPECT_EQ(numbered.count(), 0) << "off";
  enableAll();
  QSignalSpy load(&m_panel, &TransportPanel::loadClicked);
  QTest::mouseClick(part("cmdLoad"), Qt::RightButton);
  EXPECT_EQ(numbered.count() - load.count(), 1);

  QSignalSpy chosen(&m_panel, &TransportPanel::numberedFileChosen);
  auto* list = part<FileBox>("cboFile");
  for (const int key : {Qt::Key_End, Qt::Key_2, Qt::Key_PageDown, Qt::Key_Down, Qt::Key_0})
    QTest::keyClick(list, static_cast<Qt::Key>(key));
  QWheelEvent wheel({5, 5}, list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(list, &wheel);
  EXPECT_EQ(list->currentText(), "000");
  EXPECT_EQ(chosen.count(), 0);

  QTest::keyClick(list, Qt::Key_Return);
  QWidget* popup = QApplication::activePopupWidget();
  ASSERT_NE(popup, nullptr);
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Return}) {
    QWidget* focused = QApplication::focusWidget();
    QTest::keyClick(focused != nullptr ? focused : popup, key);
  }
  ASSERT_EQ(chosen.count(), 1);
  EXPECT_EQ(chosen.at(0).at(0).toString(), "002");

  m_panel.setNumberedFiles({}, -1);
  EXPECT_FALSE(list->isEnabled());
}

TEST_F(TransportPanelTest, ReadOutsAreSeenAndToldInWords) {
  const auto text = [&](const char* name) {
    return part(name)->property("text").toString().toStdString();
  };
  const auto told = [&](const char* name, QAccessible::Text kind) {
    return QAccessible::queryAccessibleInterface(part(name))->text(kind).toStdString();
  };
  m_panel.setLoadedFile("R&D_001.qvd", "/takes/R&D_001.qvd");
  m_panel.setTotalTime(93839);
  m_panel.setPlayTime(3600);
  m_panel.setTag("12");
  EXPECT_EQ(text("lblLoadedFile"), "R&D_001.qvd");
  EXPECT_EQ(told("lblLoadedFile", QAccessible::Name), "R&D_001.qvd");
  EXPECT_TRUE(part<QAbstractButton>("lblLoadedFile")->shortcut().isEmpty()) << "Alt+D is a menu's";
  EXPECT_EQ(told("lblTotalTime", QAccessible::Description), "26:03:59");
  EXPECT_EQ(told("lblPlayTime", QAccessible::Description), "1:00:00");
  EXPECT_EQ(told("lblTag", QAccessible::Description), "12");
  m_panel.showNothingLoaded();
  EXPECT_EQ(text("lblLoadedFile"), "No File Loaded");
  EXPECT_EQ(part("lblLoadedFile")->toolTip(), "No File Loaded");
  EXPECT_EQ(text("lblTotalTime") + text("lblTag") + text("lblPlayTime"), "0:00:00");
}

TEST_F(TransportPanelTest, PlayTimeIsRedAndTheRecordModeOnWhileRecording) {
  const QWidget* time = part("lblPlayTime");
  for (const int programState : {0, 3, 0}) {
    TransportInputs inputs;
    inputs.programState = programState;
    m_panel.setState(transportState(inputs));
    const bool red = time->palette().color(time->foregroundRole()) == QColor(255, 0, 0);
    EXPECT_EQ(red, programState == 3);
    EXPECT_EQ(part("lblRecordMode")->isEnabled(), programState == 3);
  }
}

TEST_F(TransportPanelTest, GrowsWithTheFontAndCutsNothing) {
  EXPECT_EQ(m_panel.neededHeight(), 83);
  QSignalSpy changed(&m_panel, &TransportPanel::neededHeightChanged);
  m_panel.setTag("123");
  QFont font = m_panel.font();
  font.setPointSize(20);
  m_panel.setFont(font);
  EXPECT_GE(changed.count(), 1);
  EXPECT_GT(m_panel.neededHeight(), 83);
  m_panel.resize(700, m_panel.neededHeight());
  for (const QWidget* control : m_panel.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    const std::string name = control->objectName().toStdString();
    EXPECT_TRUE(m_panel.rect().contains(control->geometry())) << name;
    const bool line = control->inherits("QLabel") || name == "lblLoadedFile";
    EXPECT_GE(control->height(), line ? control->fontMetrics().height() : 1) << name;
  }
}

class PaintedBar : public FilePositionBar {
 public:
  PaintedBar() : FilePositionBar(nullptr) {
    resize(500, 20);
    show();
    if (!QTest::qWaitForWindowExposed(this)) ADD_FAILURE() << "not shown";
    settle();
  }

  /// Paints what is due, and forgets it.
  QRegion settle() {
    QCoreApplication::sendPostedEvents();
    QTest::qWait(0);
    return std::exchange(m_painted, {});
  }
  QColor pixel(int x, int y) { return grab().toImage().pixelColor(x, y); }

 protected:
  void paintEvent(QPaintEvent* event) override {
    m_painted += event->region();
    FilePositionBar::paintEvent(event);
  }

 private:
  QRegion m_painted;
};

class FilePositionBarTest : public testing::Test {
 protected:
  /// From the first place over the others to the last.
  void drag(const std::vector<int>& places) {
    QTest::mousePress(&m_bar, Qt::LeftButton, {}, {places.front(), 10});
    for (const int x : places) QTest::mouseMove(&m_bar, {x, 10});
    QTest::mouseRelease(&m_bar, Qt::LeftButton, {}, {places.back(), 10});
  }

  PaintedBar m_bar;
  QSignalSpy m_seeks{&m_bar, &FilePositionBar::seekRequested};
  QSignalSpy m_ranges{&m_bar, &FilePositionBar::rangeRequested};
  QSignalSpy m_wholes{&m_bar, &FilePositionBar::wholeRangeRequested};
};

TEST_F(FilePositionBarTest, PaintsOnlyWhatChanged) {
  m_bar.showPlayback(100, 900, 400);
  m_bar.settle();
  for (int i = 1; i <= 50; ++i) m_bar.showPlayback(100, 900, 400 + i * 0.01);
  EXPECT_TRUE(m_bar.settle().isEmpty()) << "within one pixel";
  m_bar.showPlayback(100, 900, 410);
  const QRegion painted = m_bar.settle();
  EXPECT_TRUE(painted.contains(QPoint(202, 10)));
  EXPECT_LT(painted.boundingRect().width(), 12);
  m_bar.showPlayback(100, 900, 100);
  EXPECT_TRUE(m_bar.settle().contains(QRect(50, 5, 155, 10))) << "back at the start";
}

TEST_F(FilePositionBarTest, ColoursOfItsFaces) {
  const QColor face = m_bar.palette().color(QPalette::Button);
  const QColor highlight = m_bar.palette().color(QPalette::Highlight);
  m_bar.showPlayback(200, 800, 500);
  EXPECT_EQ(m_bar.pixel(99, 10), face);
  EXPECT_EQ(m_bar.pixel(100, 10), highlight);
  EXPECT_EQ(m_bar.pixel(249, 14), highlight);
  EXPECT_EQ(m_bar.pixel(100, 4), m_bar.pixel(399, 10)) << "the block shows above the progress";
  EXPECT_NE(m_bar.pixel(399, 10), face);
  EXPECT_EQ(m_bar.pixel(400, 10), face);
  m_bar.showRecording();
  EXPECT_EQ(m_bar.pixel(10, 10), QColor(255, 0, 0));
  EXPECT_NE(m_bar.pixel(250, 1), QColor(255, 0, 0));
  m_bar.showWork(0.5);
  EXPECT_EQ(m_bar.pixel(249, 10), highlight);
  EXPECT_EQ(m_bar.pixel(251, 10), face);
  m_bar.clear();
  EXPECT_EQ(m_bar.pixel(100, 10), face);
}

TEST_F(FilePositionBarTest, MouseActsAsTheUseSays) {
  QTest::mouseClick(&m_bar, Qt::LeftButton, {}, {100, 10});
  QTest::mouseClick(&m_bar, Qt::RightButton, {}, {100, 10});
  EXPECT_EQ(m_seeks.count() + m_ranges.count() + m_wholes.count(), 0) << "of no use";

  m_bar.setUse(BarUse::Seek, false);
  QTest::mousePress(&m_bar, Qt::LeftButton, {}, {499, 10});
  ASSERT_EQ(m_seeks.count(), 1) << "at the press";
  EXPECT_EQ(m_seeks.takeFirst().at(0).toInt(), 1000);
  QTest::mouseRelease(&m_bar, Qt::LeftButton, {}, {20, 10});
  QTest::mouseClick(&m_bar, Qt::RightButton, {}, {100, 10});

  m_bar.setUse(BarUse::Range, true);
  drag({250});
  drag({250, 300, 250});
  EXPECT_EQ(m_seeks.count() + m_ranges.count() + m_wholes.count(), 0) << "no movement";
  drag({499, 0});
  ASSERT_EQ(m_ranges.count(), 1);
  EXPECT_EQ(m_ranges.at(0), (QVariantList{1000, 0}));
  QTest::mouseClick(&m_bar, Qt::RightButton, {}, {100, 10});
  EXPECT_EQ(m_wholes.count(), 1);
}

TEST_F(FilePositionBarTest, DragShowsTheRangeOnItsWayAndIsGivenUpWhenPlaybackBegins) {
  m_bar.showRange(0, 1000);
  m_bar.setUse(BarUse::Range, true);
  QTest::mousePress(&m_bar, Qt::LeftButton, {}, {499, 10});
  QTest::mouseMove(&m_bar, {0, 10});
  QTest::mouseMove(&m_bar, {100, 10});
  EXPECT_EQ(m_bar.shown().range, (BarRange{200, 1000}));
  m_bar.setUse(BarUse::Seek, false);
  EXPECT_EQ(m_bar.shown().range, (BarRange{0, 1000}));
  QTest::mouseRelease(&m_bar, Qt::LeftButton, {}, {100, 10});
  EXPECT_EQ(m_ranges.count(), 0);
}

TEST_F(FilePositionBarTest, AssistiveTechnologyReadsAndSetsThePlace) {
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&m_bar);
  ASSERT_TRUE(face != nullptr && face->valueInterface() != nullptr);
  m_bar.showPlayback(100, 900, 500);
  EXPECT_EQ(face->valueInterface()->currentValue().toInt(), 500);
  EXPECT_EQ(face->text(QAccessible::Name), "Position");
  EXPECT_EQ(face->text(QAccessible::Description), "Plays 10.0 % to 90.0 %");
  face->valueInterface()->setCurrentValue(300);
  EXPECT_EQ(m_seeks.count(), 0) << "of no use";
  EXPECT_EQ(m_bar.value(), 500) << "still what is shown";
  m_bar.setUse(BarUse::Seek, false);
  face->valueInterface()->setCurrentValue(300);
  ASSERT_EQ(m_seeks.count(), 1);
  EXPECT_EQ(m_seeks.at(0).at(0).toInt(), 300);
}

/// Texts of a common font with lines so high.
TransportMetrics metricsAt(int line) {
  TransportMetrics metrics;
  metrics.line = line;
  metrics.captions = {line * 3, line * 2, line * 3, line * 2,
                      line * 2, line * 3, line * 2, line * 4};
  metrics.time = line * 9 / 2;
  metrics.tag = line * 3;
  metrics.details = line * 7;
  metrics.list = {line * 3 + 20, line + 8};
  return metrics;
}

void expectApart(const std::vector<QRect>& parts, const QRect& within, const std::string& what) {
  for (std::size_t i = 0; i < parts.size(); ++i) {
    EXPECT_TRUE(within.contains(parts[i])) << what << ", part " << i;
    EXPECT_FALSE(parts[i].isEmpty()) << what << ", part " << i;
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_FALSE(parts[i].intersects(parts[j])) << what << ", parts " << i << " and " << j;
  }
}

TEST(TransportLayout, NothingOverlapsOrLeavesThePanelAtAnyWidthAndFont) {
  for (const int line : {10, 14, 15, 19, 22, 28, 36, 41}) {
    const TransportMetrics metrics = metricsAt(line);
    const int height = transportHeight(line);
    for (int width = 700; width <= 2560; width += 31) {
      const std::string what = "line " + std::to_string(line) + " width " + std::to_string(width);
      const TransportPlaces places = layOutTransport({width, height}, metrics);
      std::vector<QRect> parts(places.keys.begin(), places.keys.end());
      parts.insert(parts.end(), {places.bar, places.display, places.list});
      expectApart(parts, {0, 0, width, height}, what);
      expectApart({places.time, places.total, places.file, places.mode, places.tag}, places.display,
                  what);
      EXPECT_GE(places.total.height(), line) << what;
      if (!places.captions) continue;
      for (std::size_t key = 0; key < places.keys.size(); ++key)
        EXPECT_GT(places.keys[key].width(), metrics.captions[key]) << what;
    }
  }
}

TEST(TransportLayout, CaptionsGoBeforeTheReadOutsLackRoom) {
  struct Row {
    int width, line;
    bool captions, twoRows;
  };
  for (const Row& row : {Row{800, 14, true, false},
                         {1280, 15, true, false},
                         {700, 15, false, false},
                         {700, 28, false, true},
                         {2560, 28, true, false}}) {
    const TransportPlaces places =
        layOutTransport({row.width, transportHeight(row.line)}, metricsAt(row.line));
    EXPECT_EQ(places.captions, row.captions) << row.width << " " << row.line;
    const bool twoRows =
        places.key(TransportKey::Save).top() != places.key(TransportKey::Record).top();
    EXPECT_EQ(twoRows, row.twoRows) << row.width << " " << row.line;
  }
}

}  // namespace
}  // namespace qv3
