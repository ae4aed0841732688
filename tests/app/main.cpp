#include <gtest/gtest.h>

#include <QApplication>
#include <QFont>
#include <QLocale>

#include "display/accessiblevalue.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Listing the tests needs no screen either.
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  QLocale::setDefault(QLocale::c());
  QFont::insertSubstitution(QStringLiteral("Aerial"), QStringLiteral("Liberation Sans"));
  qv3::installAccessibleValues();
  return RUN_ALL_TESTS();
}
