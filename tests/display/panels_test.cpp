#include <gtest/gtest.h>

#include <QAccessible>
#include <QImage>
#include <QSignalSpy>
#include <QtMath>
#include <QtTest>
#include <cmath>

#include "display/accessiblevalue.h"
#include "display/bdpanel.h"
#include "display/displaystyle.h"
#include "display/graphpanel.h"
#include "display/knobpanel.h"

namespace qv3 {
namespace {

constexpr Colour kPanel = 10070316;

QImage pictureOf(QWidget& widget) {
  return widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

/// Smallest rectangle, in device pixels, that holds all pixels of a kind.
template <typename IsOf>
QRect boxOf(const QImage& image, IsOf isOf) {
  QRect box;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (isOf(x, y)) box |= QRect(x, y, 1, 1);
    }
  }
  return box;
}

/// Of everything not of this colour.
QRect inkOf(const QImage& image, Colour paper) {
  const QRgb bare = toQColor(paper).rgb();
  return boxOf(image, [&](int x, int y) { return image.pixel(x, y) != bare; });
}

// ---- Knob ----

void dress(KnobPanel& panel, int side, int index, const QString& label) {
  panel.resize(side, side);
  panel.setMeterWidth(qRound(side / 0.22));
  panel.setColours(kPanel, 0);
  panel.Update_SensKnob(index, label);
}

TEST(KnobPanel, TellsTheMouseInKnobUnits) {
  KnobPanel panel;
  dress(panel, 220, 0, "1.0");
  panel.show();
  QSignalSpy spy(&panel, &KnobPanel::mouseUsed);
  QTest::mousePress(&panel, Qt::LeftButton, {}, {210, 60});
  QTest::mouseMove(&panel, {10, 160});
  QTest::mouseRelease(&panel, Qt::LeftButton, {}, {10, 160});
  QTest::mousePress(&panel, Qt::RightButton, {}, {210, 60});
  QTest::mouseRelease(&panel, Qt::RightButton, {}, {210, 60});
  QMouseEvent both(QEvent::MouseMove, QPointF(210, 60), QPointF(210, 60), Qt::NoButton,
                   Qt::LeftButton | Qt::RightButton, Qt::NoModifier);
  QCoreApplication::sendEvent(&panel, &both);
  struct Row {
    int button;
    double x, y;
  };
  const Row rows[] = {{1, 1.0, 0.5}, {1, -1.0, -0.5}, {2, 1.0, 0.5}, {3, 1.0, 0.5}};
  ASSERT_EQ(spy.count(), static_cast<int>(std::size(rows)));
  for (int i = 0; i < spy.count(); ++i) {
    EXPECT_EQ(spy[i][0].toInt(), rows[i].button) << i;
    EXPECT_NEAR(spy[i][1].toDouble(), rows[i].x, 1e-9) << i;
    EXPECT_NEAR(spy[i][2].toDouble(), rows[i].y, 1e-9) << i;
  }
}

TEST(KnobPanel, AKeyIsAPressWhereItTurnsTheKnobTo) {
  KnobPanel panel;
  QSignalSpy spy(&panel, &KnobPanel::mouseUsed);
  for (int index = 0; index <= knob::kLastIndex; ++index) {
    panel.Update_SensKnob(index, "");
    for (const auto& [key, asked] : {std::pair{Qt::Key_Left, qMax(index - 1, 0)},
                                     {Qt::Key_Right, qMin(index + 1, knob::kLastIndex)},
                                     {Qt::Key_Home, 0},
                                     {Qt::Key_End, knob::kLastIndex}}) {
      QTest::keyClick(&panel, key);
      const QList<QVariant> press = spy.takeLast();
      EXPECT_EQ(knob::indexAt(press[1].toDouble(), press[2].toDouble(), press[0].toInt()), asked);
    }
  }
}

/// Whatever a panel has been through, it shows what one made like this shows.
TEST(KnobPanel, ShowsNothingOfWhatItShowedBefore) {
  KnobPanel changed;
  dress(changed, 180, 63, "40");
  changed.setColours(0xffffff, 255);
  changed.show();
  pictureOf(changed);
  dress(changed, 120, 20, "5.0");
  KnobPanel fresh;
  dress(fresh, 120, 20, "5.0");
  fresh.show();
  EXPECT_EQ(pictureOf(changed), pictureOf(fresh));
  fresh.Update_SensKnob(23, "5.5");
  EXPECT_NE(pictureOf(changed), pictureOf(fresh));
}

TEST(KnobPanel, PointerIsWhereItsIndexSays) {
  KnobPanel panel;
  dress(panel, 220, 0, "");
  panel.show();
  const auto darkness = [&](double x, double y) {
    const qreal ratio = panel.devicePixelRatioF();
    const QImage image = pictureOf(panel);
    return 255 -
           qGray(image.pixel(qFloor((x + 1.1) * 100 * ratio), qFloor((1.1 - y) * 100 * ratio)));
  };
  // The far side of the pointer's disc, where neither rim nor tick is.
  for (const int index : {2, 30, 61}) {
    const double angle = knob::pointerAngle(index);
    const double x = 0.95 * std::cos(angle);
    const double y = 0.95 * std::sin(angle);
    panel.Update_SensKnob(index, "");
    const int on = darkness(x, y);
    panel.Update_SensKnob(index < 32 ? 50 : 10, "");
    EXPECT_GT(on, darkness(x, y) + 60) << index;
  }
}

TEST(KnobPanel, LabelHasItsPlaceAndIsReadBySpeech) {
  KnobPanel panel;
  dress(panel, 220, 32, "");
  panel.show();
  const QImage bare = pictureOf(panel);
  panel.Update_SensKnob(32, "8.5");
  const QImage labelled = pictureOf(panel);
  const QRect box =
      boxOf(bare, [&](int x, int y) { return bare.pixel(x, y) != labelled.pixel(x, y); });
  const double unit = 100 * panel.devicePixelRatioF();
  EXPECT_NEAR(box.center().x() / unit, 1.1, 0.04);
  EXPECT_GT(box.top() / unit, 1.6);
  EXPECT_LT(box.bottom() / unit, 1.6 + 0.39);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&panel)->text(QAccessible::Value), "8.5");
}

// ---- BD read-out ----

TEST(BdPanel, TextStaysInsideWhateverItsLength) {
  for (const QSize size : {QSize(162, 59), QSize(40, 15), QSize(300, 300)}) {
    for (const char* text : {"0.0", "99.9", "819", "-3276.7"}) {
      BdPanel panel;
      panel.resize(size);
      panel.setColours(kPanel, 0, 0x808080);
      panel.Update_BdDisplay(text, true);
      panel.show();
      const QImage image = pictureOf(panel);
      const QRect ink = inkOf(image, kPanel);
      EXPECT_FALSE(ink.isEmpty()) << text;
      EXPECT_GE(ink.left(), 1);
      EXPECT_LT(ink.right(), image.width() - 1) << text << size.width();
      EXPECT_LT(ink.bottom(), image.height() - 1) << text << size.width();
    }
  }
}

TEST(BdPanel, FillsItsHeightAndTellsRunningByColour) {
  BdPanel panel;
  panel.resize(400, 103);
  panel.setColours(kPanel, 0, 0xff);
  panel.Update_BdDisplay("0.0", true);
  panel.show();
  const QImage running = pictureOf(panel);
  // A digit is 0.7 of the font's size high.
  EXPECT_NEAR(inkOf(running, kPanel).height() / panel.devicePixelRatioF(), 71, 3);
  panel.Update_BdDisplay("0.0", false);
  const QImage stopped = pictureOf(panel);
  const QPoint stem =
      inkOf(running, kPanel).topLeft() +
      QPoint(qRound(5 * panel.devicePixelRatioF()), inkOf(running, kPanel).height() / 2);
  EXPECT_EQ(running.pixelColor(stem), QColor(0, 0, 0));
  EXPECT_EQ(stopped.pixelColor(stem), QColor(255, 0, 0));
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&panel)->text(QAccessible::Value),
            "0.0, stopped");
}

// ---- Strip chart ----

void feed(GraphTrace& trace, GraphPanel* panel, int from, int to) {
  for (int i = from; i < to; ++i) {
    const int value = 33000 + static_cast<int>(9000 * std::sin(i * 0.05));
    if (trace.Update_Graph(value, 0, 1, false) && panel) panel->showTrace();
  }
}

GraphStyle ruled() {
  GraphStyle style;
  style.GridX = style.GridY = true;
  return style;
}

TEST(GraphPanel, FollowsTheTraceAsIfDrawnAnew) {
  GraphTrace trace;
  GraphPanel panel(trace);
  panel.setStyle(ruled());
  panel.resize(333, 81);
  panel.show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
  feed(trace, &panel, 0, 501);
  const QImage followed = pictureOf(panel);
  GraphTrace again;
  GraphPanel fresh(again);
  fresh.setStyle(ruled());
  fresh.resize(333, 81);
  feed(again, nullptr, 0, 501);
  EXPECT_EQ(followed, pictureOf(fresh));
  EXPECT_GT(inkOf(followed, 11924207).width(), followed.width() - 4);
  EXPECT_EQ(panel.accessibleValue(), "Needle over the last 8 second(s)");
}

TEST(GraphPanel, ResizeRebuildsAtTheNextSample) {
  GraphTrace trace;
  GraphPanel panel(trace);
  panel.resize(333, 81);
  panel.show();
  feed(trace, &panel, 0, 401);
  panel.resize(500, 120);
  EXPECT_TRUE(trace.state().GraphRebuild);
  EXPECT_EQ(trace.state().x[199], 500);
  EXPECT_FALSE(inkOf(pictureOf(panel), 11924207).isEmpty());
  feed(trace, &panel, 401, 402);
  EXPECT_EQ(pictureOf(panel).size(), QSize(500, 120) * panel.devicePixelRatioF());
  EXPECT_LT(inkOf(pictureOf(panel), 11924207).width(), 20 * panel.devicePixelRatioF());
}

// ---- What assistive technology reads ----

class Lamp : public ValueWidget {
 public:
  QString accessibleValue() const override {
    m_composed << (m_on ? "on" : "off");
    return m_composed.last();
  }
  void turn(bool on) {
    m_on = on;
    tellAccessibleValue();
  }
  void listen() { m_heard = true; }
  QStringList composed() const { return m_composed; }
  std::vector<SurfacePart> accessibleParts() const override {
    return {{"Bulb", m_on ? "on" : "", {2, 3, 4, 5}}};
  }

 protected:
  bool isHeard() const override { return m_heard; }

 private:
  bool m_on = false;
  bool m_heard = false;
  mutable QStringList m_composed;
};

TEST(AccessibleValue, WordsAreValueAndDescription) {
  Lamp lamp;
  lamp.turn(false);
  EXPECT_EQ(lamp.composed(), QStringList()) << "nobody listens";
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&lamp);
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(face->text(QAccessible::Value), "off");
  EXPECT_EQ(face->text(QAccessible::Description), "off");
  lamp.setAccessibleDescription("Tells SET from body motion");
  EXPECT_EQ(face->text(QAccessible::Description), "Tells SET from body motion");
}

TEST(AccessibleValue, ManyChangesAreToldOnceAndTheLastIsNotLost) {
  Lamp lamp;
  lamp.listen();
  for (int change = 0; change < 999; ++change) lamp.turn(change % 2 == 0);
  lamp.turn(false);
  EXPECT_EQ(lamp.composed(), QStringList{"on"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return lamp.composed().count() == 2; }));
  EXPECT_EQ(lamp.composed().last(), "off");
  lamp.turn(true);
  EXPECT_EQ(lamp.composed().count(), 2) << "the last telling is fresh";
}

TEST(AccessibleValue, PartsAreChildrenWithoutAnObject) {
  QAccessible::Id id = 0;
  {
    Lamp lamp;
    lamp.resize(10, 10);
    lamp.show();
    lamp.turn(true);
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&lamp);
    ASSERT_EQ(face->childCount(), 1);
    QAccessibleInterface* bulb = face->child(0);
    id = QAccessible::uniqueId(bulb);
    EXPECT_EQ(bulb->parent(), face);
    EXPECT_EQ(bulb->text(QAccessible::Name), "Bulb");
    EXPECT_EQ(bulb->text(QAccessible::Value), "on");
    EXPECT_EQ(bulb->rect(), QRect(lamp.mapToGlobal(QPoint(2, 3)), QSize(4, 5)));
    EXPECT_EQ(face->childAt(bulb->rect().x(), bulb->rect().y()), bulb);
    EXPECT_FALSE(bulb->state().invisible);
    lamp.turn(false);
    EXPECT_TRUE(bulb->state().invisible);
    EXPECT_EQ(face->child(1), nullptr);
  }
  EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr) << "gone with its surface";
}

}  // namespace
}  // namespace qv3
