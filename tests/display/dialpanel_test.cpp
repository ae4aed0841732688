#include "display/dialpanel.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QCoreApplication>
#include <QImage>
#include <QScreen>
#include <QTest>

#include "display/displaystyle.h"

namespace qv3 {
namespace {

constexpr Colour kNeedle = 255;
constexpr Colour kShadow = 0x8080ff;
constexpr Colour kLampGreen = 65280;

DialStyle styleOf(int dialType, int scaleType = 0, int needleWidth = 4) {
  DialStyle style;
  style.DialType = dialType;
  style.ScaleType = scaleType;
  style.Needle_Width = needleWidth;
  return style;
}

/// A panel in a window, off its corner by an odd number of pixels so that at a ratio of 1.5 it
/// starts within a device pixel. `shown()` is what partial repaints left on the screen, `painted()`
/// what painting everything anew gives.
class DialPanelTest : public testing::Test {
 protected:
  static constexpr int kWidth = 740;
  static constexpr int kHeight = 480;

  DialPanelTest() : m_panel(&m_window) {
    // The offscreen platform hands out no more device pixels than the window has logical ones.
    m_window.resize(2 * kWidth, 2 * kHeight);
    m_panel.setGeometry(13, 7, 703, 439);
    m_panel.Update_BaseDisplay("2.35");
    m_panel.Update_ModeDisplay({"RECORD", "Recording", 0, true});
    m_panel.Update_Clock({ClockKind::TwelveHour, 13, 5, "30/09/2026"});
  }

  void show(const DialStyle& style) {
    m_panel.Draw_Panel(style);
    m_window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    QCoreApplication::processEvents();
  }

  QImage shown() {
    QCoreApplication::processEvents();
    const QPixmap screen = m_window.screen()->grabWindow(m_window.winId(), 0, 0, kWidth, kHeight);
    return screen.toImage().convertToFormat(QImage::Format_RGB32);
  }

  QImage painted() {
    const QPixmap window = m_window.grab(QRect(0, 0, kWidth, kHeight));
    return window.toImage().convertToFormat(QImage::Format_RGB32);
  }

  /// Pixel colour at a point of the panel, in panel units.
  QColor at(const QImage& image, dial::Point point) const {
    const dial::Point p = PanelMap(m_panel.width(), m_panel.height()).at(point);
    const QPointF inWindow = QPointF(m_panel.pos()) + QPointF(p.x, p.y);
    const QPointF pixel = inWindow * image.devicePixelRatio();
    return image.pixelColor(qFloor(pixel.x()), qFloor(pixel.y()));
  }

  QWidget m_window;
  DialPanel m_panel;
};

TEST_F(DialPanelTest, WindowHasTheRatioOfTheRun) {
  show(styleOf(1));
  const QByteArray ratio = qgetenv("QT_SCALE_FACTOR");
  EXPECT_EQ(m_panel.devicePixelRatioF(), ratio.isEmpty() ? 1.0 : ratio.toDouble());
  EXPECT_EQ(shown().width(), qCeil(kWidth * m_panel.devicePixelRatioF()));
}

/// The toolkit draws letters from 64 pixels on as outlines, whose edges differ by a few levels with
/// the sizes drawn before.
bool looksLike(const QImage& a, const QImage& b) {
  const auto near = [](int one, int other) { return qAbs(one - other) <= 8; };
  if (a.size() != b.size()) return false;
  for (int i = 0; i < a.width() * a.height(); ++i) {
    const QRgb p = a.pixel(i % a.width(), i / a.width());
    const QRgb q = b.pixel(i % a.width(), i / a.width());
    const bool same = near(qRed(p), qRed(q)) && near(qGreen(p), qGreen(q));
    if (!same || !near(qBlue(p), qBlue(q))) return false;
  }
  return true;
}

TEST_F(DialPanelTest, NeedleLeavesNoGhost) {
  struct Sweep {
    int dialType, needleWidth, end, step;
  };
  for (const Sweep& sweep :
       {Sweep{0, 4, 32767, 1637}, Sweep{1, 1, 10500, 523}, Sweep{1, 4, 10500, 41},
        Sweep{2, 8, 8000, 211}, Sweep{3, 3, 32767, 901}}) {
    SCOPED_TRACE(testing::Message() << sweep.dialType << " " << sweep.needleWidth);
    show(styleOf(sweep.dialType, 0, sweep.needleWidth));
    m_panel.Update_LED(kLampGreen);
    const QImage before = shown();
    for (int value = -sweep.end; value <= sweep.end; value += sweep.step) {
      m_panel.moveNeedle(value, kNeedle, kShadow);
      ASSERT_EQ(shown(), painted()) << value;
    }
    EXPECT_NE(shown(), before);
    m_panel.Remove_Needle();
    EXPECT_EQ(shown(), before);
  }
}

TEST_F(DialPanelTest, NeedleBesideTheFaceLeavesTheDialColour) {
  show(styleOf(1));
  m_panel.moveNeedle(16384, kNeedle, kShadow);
  EXPECT_EQ(at(shown(), {750, 0}), QColor(255, 0, 0));
  m_panel.moveNeedle(0, kNeedle, kShadow);
  EXPECT_EQ(at(shown(), {750, 0}), QColor(255, 255, 255));
  EXPECT_EQ(shown(), painted());
  m_panel.Draw_Panel(styleOf(1));
  EXPECT_EQ(at(shown(), {750, 0}), toQColor(DialStyle().Panel_Color));
}

TEST_F(DialPanelTest, FacesFollowDialAndScaleType) {
  struct Row {
    int dialType;
    int scaleType;
    dial::Point point;
    Colour colour;
  };
  const DialStyle style;
  for (const Row& row :
       {Row{1, 0, {0, 1090}, style.Dial_Color}, Row{1, 0, {0, 440}, style.Panel_Color},
        Row{2, 1, {0, 490}, style.Dial_Color}, Row{2, 0, {0, 1045}, style.Scale_Color},
        Row{0, 0, {300, 500}, style.Dial_Color}, Row{3, 1, {0, 547}, style.Dial_Color},
        Row{3, 0, {0, 562.5 + 600}, style.Scale_Color}, Row{0, 1, {0, 635}, style.Scale_Color},
        Row{4, 0, {0, 800}, style.Panel_Color}, Row{-1, 0, {0, 800}, style.Panel_Color},
        Row{1, 2, {0, 800}, style.Panel_Color}, Row{0, -1, {0, 800}, style.Panel_Color}}) {
    show(styleOf(row.dialType, row.scaleType));
    EXPECT_EQ(at(shown(), row.point), toQColor(row.colour)) << row.dialType << " " << row.scaleType;
  }
}

TEST_F(DialPanelTest, LampLightsGoesOutAndSurvivesADrawing) {
  for (const int dialType : {0, 1, 2, 3}) {
    show(styleOf(dialType));
    const QImage off = shown();
    m_panel.Update_LED(kLampGreen);
    const dial::Point lamp = dial::lamp(dialType, 703).at;
    EXPECT_EQ(at(shown(), lamp), QColor(0, 255, 0)) << dialType;
    m_panel.Draw_Panel(styleOf(dialType));
    m_panel.Remove_Needle();
    EXPECT_EQ(at(shown(), lamp), QColor(0, 255, 0)) << dialType;
    m_panel.Update_LED(DialStyle().Dial_Color);
    EXPECT_EQ(shown(), off) << dialType;
    DialStyle dark = styleOf(dialType);
    dark.Dial_Color = 0x202020;
    m_panel.Draw_Panel(dark);
    EXPECT_EQ(at(shown(), lamp), QColor(0x20, 0x20, 0x20)) << "off in another colour, too";
  }
}

TEST_F(DialPanelTest, NoNeedleWithoutWidth) {
  show(styleOf(1, 0, 0));
  const QImage before = shown();
  m_panel.moveNeedle(0, kNeedle, kShadow);
  EXPECT_EQ(shown(), before);
  m_panel.setNeedleWidth(3);
  m_panel.moveNeedle(0, kNeedle, kShadow);
  EXPECT_EQ(at(shown(), {0, 750}), QColor(255, 0, 0));
  m_panel.setNeedleWidth(0);
  EXPECT_EQ(shown(), before);
}

TEST_F(DialPanelTest, ShadowShowsWithHysteresisAndOppositeArmAlways) {
  show(styleOf(2));
  const auto shadowAt = [](int value) {
    const dial::Line line = dial::needle(2, dial::shadowValue(value));
    return dial::Point{(line.from.x + line.to.x) / 2, (line.from.y + line.to.y) / 2};
  };
  for (const auto& [value, drawn] :
       {std::pair(5000, false), {7000, true}, {5000, true}, {3000, false}}) {
    m_panel.moveNeedle(value, kNeedle, kShadow);
    const QColor colour = at(shown(), shadowAt(value));
    EXPECT_EQ(colour, drawn ? toQColor(kShadow) : QColor(255, 255, 255)) << value;
  }
  show(styleOf(3));
  m_panel.moveNeedle(0, kNeedle, kShadow);
  EXPECT_EQ(at(shown(), {0, 300}), QColor(255, 0, 0));
}

/// Text that stays on the panel leaves a border of panel colour, whatever it says.
TEST_F(DialPanelTest, TextsStayOnThePanelAndOffTheDial) {
  const ModeReadout modes[] = {{"", "Checking Port 16 for Hardware", 0, false},
                               {"RECORD", "Input Error", 255, true}};
  for (const bool left : {false, true}) {
    for (const ModeReadout& mode : modes) {
      DialStyle style = styleOf(0);
      style.ClockLeft = left;
      m_panel.Update_Clock(
          {ClockKind::TwelveHour, 12, 55, "Wednesday, 30 September 2026, week 40"});
      m_panel.Update_ModeDisplay(mode);
      show(style);
      const QImage image = shown();
      for (double y = 0; y < 1190; y += 1) {
        ASSERT_EQ(at(image, {-994, y}), toQColor(style.Panel_Color)) << y;
        ASSERT_EQ(at(image, {994, y}), toQColor(style.Panel_Color)) << y;
      }
      style.DialType = 1;
      m_panel.Draw_Panel(style);
      const QImage arc = shown();
      for (double a = 0.6; a < 2.5; a += 0.001) {
        ASSERT_EQ(at(arc, {1096 * std::cos(a), 1096 * std::sin(a)}), toQColor(style.Dial_Color))
            << a;
      }
    }
  }
}

TEST_F(DialPanelTest, ReadoutsReplaceWhatStoodThere) {
  for (const int dialType : {0, 1, 4}) {
    show(styleOf(dialType));
    const QImage before = shown();
    m_panel.Update_BaseDisplay("6.55");
    m_panel.Update_ModeDisplay({"PLAY", "Checking Port 16 for Hardware", 255, false});
    m_panel.Update_Clock({ClockKind::Analogue, 3, 25, ""});
    EXPECT_EQ(shown(), painted());
    EXPECT_FALSE(looksLike(shown(), before));
    m_panel.Update_BaseDisplay("2.35");
    m_panel.Update_ModeDisplay({"RECORD", "Recording", 0, true});
    m_panel.Update_Clock({ClockKind::TwelveHour, 13, 5, "30/09/2026"});
    EXPECT_TRUE(looksLike(shown(), before)) << dialType;
  }
}

TEST_F(DialPanelTest, FollowsItsSize) {
  show(styleOf(1));
  m_panel.moveNeedle(-2503, kNeedle, kShadow);
  m_panel.resize(400, 250);
  EXPECT_EQ(shown(), painted());
  EXPECT_EQ(at(shown(), {0, 1090}), QColor(255, 255, 255));
  const dial::Line needle = dial::needle(1, -2503);
  EXPECT_EQ(at(shown(), {(needle.from.x + needle.to.x) / 2, (needle.from.y + needle.to.y) / 2}),
            QColor(255, 0, 0));
  m_panel.resize(0, 0);
  m_panel.moveNeedle(0, kNeedle, kShadow);
  m_panel.Update_BaseDisplay("1.0");
  QCoreApplication::processEvents();
}

TEST_F(DialPanelTest, SaysWhatItShows) {
  QAccessibleInterface* face = QAccessible::queryAccessibleInterface(&m_panel);
  ASSERT_NE(face, nullptr);
  EXPECT_EQ(face->text(QAccessible::Name), "Meter dial");
  m_panel.Draw_Panel(styleOf(1));
  EXPECT_EQ(face->text(QAccessible::Value), "No needle, base 2.35, RECORD, Recording, Audio OFF");

  m_panel.Update_ModeDisplay({"LINK", "Input OK", 0, false});
  m_panel.moveNeedle(-2503, kNeedle, kShadow);
  EXPECT_EQ(face->text(QAccessible::Value), "Needle at SET, base 2.35, LINK, Input OK");
  m_panel.moveNeedle(0, kNeedle, kShadow);
  m_panel.Update_LED(kLampGreen, "SET");
  EXPECT_EQ(face->text(QAccessible::Value),
            "Needle 12 % right of SET, base 2.35, lamp SET, LINK, Input OK");
  m_panel.Draw_Panel(styleOf(3));
  m_panel.moveNeedle(-8192, kNeedle, kShadow);
  EXPECT_EQ(face->text(QAccessible::Value),
            "Needle 45 degrees left of SET, base 2.35, lamp SET, LINK, Input OK");
}

}  // namespace
}  // namespace qv3
