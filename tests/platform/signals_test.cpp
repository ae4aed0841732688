#include "platform/signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <vector>

#include "platform/clock.h"
#include "platform/pumpedwait.h"
#include "tests/platform/eventloop.h"

namespace qv3 {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};

class Signals : public testing::Test {
 protected:
  Signals() { reset(); }
  ~Signals() override { reset(); }

  static void reset() {
    for (const int number : kSignals) std::signal(number, SIG_DFL);
  }

  std::vector<int> m_heard;
};

TEST_F(Signals, AreToldFromTheEventLoopAndAreTheSystemsAgainAfterwards) {
  {
    const TerminationSignals caught([this](int number) { m_heard.push_back(number); });
    ASSERT_TRUE(caught.installed());
    for (const int number : kSignals) std::raise(number);
    EXPECT_THAT(m_heard, IsEmpty());
    EXPECT_TRUE(test::eventually([&] { return m_heard.size() == 3; }));
    EXPECT_THAT(m_heard, UnorderedElementsAre(SIGTERM, SIGINT, SIGHUP));
  }
  for (const int number : kSignals) EXPECT_EQ(std::signal(number, SIG_DFL), SIG_DFL) << number;
}

TEST_F(Signals, OneThatWasIgnoredStaysIgnoredAndOthersReachAWaitUnderWay) {
  std::signal(SIGHUP, SIG_IGN);
  PumpedWait wait(timeOfDay);
  const TerminationSignals caught([&](int number) {
    m_heard.push_back(number);
    wait.giveUp();
  });
  std::raise(SIGHUP);
  QTimer::singleShot(10, [] { std::raise(SIGINT); });
  EXPECT_FALSE(wait.wait(3600));
  EXPECT_THAT(m_heard, testing::ElementsAre(SIGINT));
}

}  // namespace
}  // namespace qv3
