#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>
#include <QLocale>

#include "display/accessiblevalue.h"
#include "tests/app/accessibletree.h"

namespace {

/// Fails the test that shows a window in which something has no name to be called by.
class NameCheck : public QObject {
 public:
  bool eventFilter(QObject* watched, QEvent* event) override {
    auto* window = qobject_cast<QWidget*>(watched);
    const bool shown = event->type() == QEvent::Show && window != nullptr && window->isWindow();
    if (!shown || window->windowTitle().isEmpty() || qv3::test::isToolkits(*window)) return false;
    for (const std::string& where : qv3::test::namelessIn(*window)) {
      ADD_FAILURE() << "without a name: " << where;
    }
    return false;
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Listing the tests needs no screen either.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QLocale::setDefault(QLocale::c());
  QFont::insertSubstitution(QStringLiteral("Aerial"), QStringLiteral("Liberation Sans"));
  qv3::installAccessibleValues();
  NameCheck names;
  application.installEventFilter(&names);
  return RUN_ALL_TESTS();
}
