#include <gtest/gtest.h>

#include <QDir>
#include <csignal>

#include "tests/faults/fault.h"

namespace qv3::test {

Strike each(std::vector<Strike> strikes) {
  return [strikes = std::move(strikes)](Bench& bench) {
    for (const Strike& strike : strikes) ASSERT_NO_FATAL_FAILURE(strike(bench));
  };
}

Strike tell(const char* command) {
  return [command](Bench& bench) { ASSERT_TRUE(bench.program().tell(command).done) << command; };
}

Strike samples(int count) {
  return [count](Bench& bench) { bench.recordMore(count); };
}

Strike opens(const char* dialog, int milliseconds) {
  return [=](Bench& bench) { ASSERT_TRUE(bench.program().opens(dialog, milliseconds)) << dialog; };
}

Strike limitFiles(std::uint64_t bytes) {
  return [bytes](Bench& bench) { bench.program().limitFiles(bytes); };
}

void killProgram(Bench& bench) {
  bench.program().signal(SIGKILL);
}

void removeSaveFolder(Bench& bench) {
  ASSERT_TRUE(QDir(bench.saves()).removeRecursively());
}

}  // namespace qv3::test
