#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>
#include <algorithm>
#include <cmath>

#include "app/window/splash.h"
#include "tests/app/programrig.h"

namespace qv3::test {
namespace {

constexpr double kReadable = 4.5;  ///< contrast of small text
constexpr double kVisible = 3;     ///< and of a symbol
constexpr int kFrame = 4;          ///< logical pixels that a control's own frame may take

double linear(int channel) {
  const double share = channel / 255.0;
  return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(QRgb colour) {
  return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
         0.0722 * linear(qBlue(colour));
}

double contrast(QRgb one, QRgb other) {
  const auto [low, high] = std::minmax({luminance(one), luminance(other)});
  return (high + 0.05) / (low + 0.05);
}

/// Of the ink with most contrast on the colour that there is most of.
double contrastIn(const QImage& image) {
  QHash<QRgb, int> counts;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
  }
  const QRgb ground = *std::max_element(
      counts.keyBegin(), counts.keyEnd(),
      [&](QRgb one, QRgb other) { return counts.value(one) < counts.value(other); });
  double best = 1;
  for (const QRgb ink : counts.keys()) best = std::max(best, contrast(ground, ink));
  return best;
}

std::string whereIs(const QWidget& widget) {
  std::string path = widget.objectName().isEmpty() ? widget.metaObject()->className()
                                                   : widget.objectName().toStdString();
  return widget.isWindow() ? path : whereIs(*widget.parentWidget()) + '/' + path;
}

QString textOf(const QWidget& widget) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) return label->text();
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
  if (const auto* group = qobject_cast<const QGroupBox*>(&widget)) return group->title();
  if (const auto* line = qobject_cast<const QLineEdit*>(&widget)) return line->text();
  return {};
}

/// Room for the text; those that adapt their text to the room have a smallest size instead.
QSize neededBy(const QWidget& widget) {
  if (const auto* key = qobject_cast<const TransportButton*>(&widget)) {
    return key->captionShown() ? key->fontMetrics().size(Qt::TextSingleLine, key->text()) : QSize();
  }
  if (qobject_cast<const LoadedFileLabel*>(&widget)) return {0, widget.fontMetrics().height()};
  if (const auto* label = qobject_cast<const QLabel*>(&widget); label && label->wordWrap()) {
    return {label->minimumSizeHint().width(), label->heightForWidth(label->width())};
  }
  const bool adapts = qobject_cast<const ElidedLabel*>(&widget) != nullptr ||
                      qobject_cast<const QGroupBox*>(&widget) != nullptr ||
                      qobject_cast<const QLineEdit*>(&widget) != nullptr;
  return adapts ? widget.minimumSizeHint() : widget.sizeHint();
}

void expectRoom(const QWidget& widget) {
  const std::string where = whereIs(widget);
  if (!widget.isWindow()) {
    EXPECT_TRUE(widget.parentWidget()->rect().contains(widget.geometry())) << where;
  }
  const bool list = qobject_cast<const QComboBox*>(&widget) != nullptr;
  if (textOf(widget).isEmpty() && !list) return;
  const QSize needed = neededBy(widget);
  EXPECT_GE(widget.width(), needed.width()) << where;
  EXPECT_GE(widget.height(), needed.height()) << where;
}

void expectApart(const QWidget& widget) {
  const auto siblings = widget.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
  for (const QWidget* one : siblings) {
    for (const QWidget* other : siblings) {
      if (one == other || one->isWindow() || other->isWindow()) continue;
      if (!one->isVisible() || !other->isVisible()) continue;
      EXPECT_FALSE(one->geometry().intersects(other->geometry()))
          << whereIs(*one) << " and " << whereIs(*other);
    }
  }
}

void expectLegible(QWidget& window) {
  const QImage image = window.grab().toImage();
  const qreal ratio = image.devicePixelRatio();
  for (const QWidget* widget : window.findChildren<QWidget*>()) {
    if (!widget->isVisible() || widget->window() != &window) continue;
    expectRoom(*widget);
    expectApart(*widget);
    // The toolkit tints a default button.
    const auto* button = qobject_cast<const QPushButton*>(widget);
    if (button != nullptr && button->isDefault()) continue;
    const bool shows = !textOf(*widget).isEmpty() && widget->isEnabled() &&
                       qobject_cast<const QGroupBox*>(widget) == nullptr;
    if (!shows) continue;
    QRect box =
        QRect(widget->mapTo(&window, QPoint()), widget->size()).adjusted(kFrame, 0, -kFrame, 0);
    const auto* key = qobject_cast<const TransportButton*>(widget);
    const bool symbol = key != nullptr && !key->captionShown();
    // Where a key has both, its symbol is the larger part.
    if (key != nullptr && !symbol) box.setTop(box.bottom() - key->fontMetrics().height());
    const QRectF pixels(QPointF(box.topLeft()) * ratio, QSizeF(box.size()) * ratio);
    EXPECT_GE(contrastIn(image.copy(pixels.toRect())), symbol ? kVisible : kReadable)
        << whereIs(*widget);
  }
  EXPECT_GE(window.width(), window.minimumSizeHint().width()) << whereIs(window);
}

struct Look {
  const char* name;
  int points;  ///< of the font; 0 is the standard one
  bool dark;
  const char* background;  ///< of the window, as a user may have chosen it
};

QPalette darkPalette() {
  QPalette palette(QColor(49, 54, 59));
  palette.setColor(QPalette::Base, QColor(35, 38, 41));
  palette.setColor(QPalette::Highlight, QColor(61, 174, 233));
  for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, QColor(130, 135, 140));
  }
  return palette;
}

class Legibility : public testing::TestWithParam<Look> {
 protected:
  void SetUp() override {
    const Look& look = GetParam();
    if (look.points != 0) {
      QFont font = m_font;
      font.setPointSize(look.points);
      QApplication::setFont(font);
    }
    if (look.dark) QApplication::setPalette(darkPalette());
    rig.files.folders = {"/rec"};
    rig.startLive(std::string("[Format]\r\nGraphVisible=1\r\nClockType=3\r\nDateType=1\r\n"
                              "[Recording]\r\nSavePath=/rec/\r\nSuffixType=0\r\n"
                              "[Colors]\r\nBackground_Color=") +
                      look.background + "\r\n",
                  "3A", 20);
    rig.turnOver();
    ASSERT_TRUE(rig.find("cmdRecord")->isEnabled());
  }
  void TearDown() override {
    rig.program.reset();
    QApplication::setFont(m_font);
    QApplication::setPalette(QPalette());
  }
  QFont m_font = QApplication::font();
  ProgramRig rig;
};

TEST_P(Legibility, OfTheMainWindow) {
  TransportPanel& panel = rig.window().transport();
  panel.setLoadedFile("Session with a rather long name 2021-03-04 15-20-00.qvd", "");
  panel.setTag("12");
  panel.setPlayTime(36000);
  panel.setTotalTime(86399);
  panel.setNumberedFiles({"001", "002"}, 0);
  expectLegible(rig.window());
}

TEST_P(Legibility, OfDialogsBoxAndSplash) {
  for (const auto& [item, dialog] : {std::pair{"mnuViewMeter", "frmMeter"},
                                     {"mnuRecSettings", "frmRec"},
                                     {"mnuhelpAbout", "frmAbout"}}) {
    rig.trigger(item);
    ASSERT_TRUE(rig.opens(dialog));
    expectLegible(*rig.dialog(dialog));
    rig.dialog(dialog)->reject();
  }
  Dialogs dialogs(rig.window());
  dialogs.retry({"msgTest", "No Hardware Detected",
                 "No qv3 Varnel meter was found. Please check the connection and try again.\n\n"
                 "Port Comm1: (/dev/ttyUSB0) could not be opened: Permission denied"},
                [](bool) {});
  ASSERT_TRUE(rig.opens("msgTest"));
  expectLegible(*rig.dialog("msgTest"));
  Splash splash;
  splash.showStatus("Checking Port 16 for Hardware");
  splash.show();
  expectLegible(splash);
}

constexpr Look kLooks[] = {
    {"standard", 0, false, "12632256"}, {"large", 18, false, "12632256"},
    {"dark", 0, true, "12632256"},      {"large-dark", 18, true, "0"},
    {"on-black", 0, false, "0"},        {"on-gray", 0, true, "8421504"},
};

INSTANTIATE_TEST_SUITE_P(Looks, Legibility, testing::ValuesIn(kLooks), [](const auto& each) {
  QString name = each.param.name;
  return name.remove('-').toStdString();
});

}  // namespace
}  // namespace qv3::test
