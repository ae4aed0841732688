#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  // The tests are listed while they are built, where there may be no display.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
