#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstring>

#include "tests/faults/driven.h"

int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], qv3::test::kDriven) == 0) {
    return qv3::test::runDriven(argc, argv);
  }
  testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
