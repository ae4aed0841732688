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

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Signals : public testing::Test {
 protected:
  Signals() {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) std::signal(number, SIG_DFL);
  }
  ~Signals() override {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) std::signal(number, SIG_DFL);
  }

  std::vector<int> m_heard;
};

TEST_F(Signals, AreToldFromTheEventLoop) {
  const TerminationSignals caught([this](int number) { m_heard.push_back(number); });
  ASSERT_TRUE(caught.installed());
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) std::raise(number);
  EXPECT_THAT(m_heard, IsEmpty());
  EXPECT_TRUE(test::eventually([&] { return m_heard.size() == 3; }));
  EXPECT_THAT(m_heard, UnorderedElementsAre(SIGTERM, SIGINT, SIGHUP));
}

TEST_F(Signals, OneThatWasIgnoredStaysIgnored) {
  std::signal(SIGHUP, SIG_IGN);
  const TerminationSignals caught([this](int number) { m_heard.push_back(number); });
  std::raise(SIGHUP);
  std::raise(SIGINT);
  EXPECT_TRUE(test::eventually([&] { return !m_heard.empty(); }));
  EXPECT_THAT(m_heard, ElementsAre(SIGINT));
}

TEST_F(Signals, AreTheSystemsAgainAfterwards) {
  {
    const TerminationSignals caught([](int) {});
  }
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    struct sigaction action {};
    sigaction(number, nullptr, &action);
    EXPECT_EQ(action.sa_handler, SIG_DFL) << number;
  }
}

TEST_F(Signals, ReachAWaitThatIsUnderWay) {
  PumpedWait wait(timeOfDay);
  const TerminationSignals caught([&](int) { wait.giveUp(); });
  QTimer::singleShot(10, [] { std::raise(SIGTERM); });
  EXPECT_FALSE(wait.wait(3600));
}

}  // namespace
}  // namespace qv3
