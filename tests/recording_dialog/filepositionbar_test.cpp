#include "recording/dialog/filepositionbar.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QImage>
#include <QPaintEvent>
#include <QSignalSpy>
#include <QTest>

namespace qv3 {
namespace {

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
  void drag(int fromX, int toX) {
    QTest::mousePress(&m_bar, Qt::LeftButton, {}, {fromX, 10});
    QTest::mouseMove(&m_bar, {toX, 10});
    QTest::mouseRelease(&m_bar, Qt::LeftButton, {}, {toX, 10});
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
  QTest::mouseClick(&m_bar, Qt::LeftButton, {}, {250, 10});
  EXPECT_EQ(m_seeks.count() + m_ranges.count() + m_wholes.count(), 0) << "no movement";
  drag(499, 0);
  ASSERT_EQ(m_ranges.count(), 1);
  EXPECT_EQ(m_ranges.at(0), (QVariantList{1000, 0}));
  QTest::mouseClick(&m_bar, Qt::RightButton, {}, {100, 10});
  EXPECT_EQ(m_wholes.count(), 1);
}

TEST_F(FilePositionBarTest, DragShowsTheRangeOnItsWayAndIsGivenUpWhenPlaybackBegins) {
  m_bar.showRange(0, 1000);
  m_bar.setUse(BarUse::Range, true);
  QTest::mousePress(&m_bar, Qt::LeftButton, {}, {0, 10});
  QTest::mouseMove(&m_bar, {499, 10});
  QTest::mouseMove(&m_bar, {0, 10});
  QTest::mouseMove(&m_bar, {100, 10});
  EXPECT_EQ(m_bar.shown().range, (BarRange{0, 200}));
  m_bar.setUse(BarUse::Seek, false);
  EXPECT_EQ(m_bar.shown().range, (BarRange{0, 1000}));
  QTest::mouseRelease(&m_bar, Qt::LeftButton, {}, {100, 10});
  EXPECT_EQ(m_ranges.count(), 0);
}

TEST_F(FilePositionBarTest, KeysMoveRangeAndPlaceAndLeaveUpAndDownAlone) {
  m_bar.showRange(100, 900);
  m_bar.setUse(BarUse::Range, true);
  QTest::keyClick(&m_bar, Qt::Key_Right);
  QTest::keyClick(&m_bar, Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(m_ranges.at(0), (QVariantList{110, 900}));
  EXPECT_EQ(m_ranges.at(1), (QVariantList{100, 890}));
  m_bar.showPlayback(100, 900, 500);
  m_bar.setUse(BarUse::Seek, false);
  QTest::keyClick(&m_bar, Qt::Key_Left);
  EXPECT_EQ(m_seeks.at(0).at(0).toInt(), 490);
  QTest::keyClick(&m_bar, Qt::Key_Up);
  QTest::keyClick(&m_bar, Qt::Key_Down);
  EXPECT_EQ(m_seeks.count(), 1);
  EXPECT_EQ(m_ranges.count(), 2);
}

TEST_F(FilePositionBarTest, AssistiveTechnologyReadsAndSetsThePlace) {
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&m_bar);
  ASSERT_NE(face, nullptr);
  ASSERT_NE(face->valueInterface(), nullptr);
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

}  // namespace
}  // namespace qv3
