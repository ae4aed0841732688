#pragma once

#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "link/waiter.h"

namespace qv3::test {

/// Waiter whose clock jumps: a wait runs what was planned for its time and returns. Each wait is
/// written to the log in milliseconds, one after another as their sum.
class FakeWaiter : public Waiter {
 public:
  explicit FakeWaiter(std::vector<std::string>& log) : m_log(log) {}

  bool TDelay(int ticks) override { return wait(ticks * kTickSeconds); }

  bool wait(double seconds) override {
    if (m_givenUp || waits++ == giveUpAtWait) m_givenUp = true;
    if (m_givenUp) return false;
    note(seconds);
    const double end = now + seconds;
    while (!m_plan.empty() && m_plan.begin()->first <= end) {
      const auto next = m_plan.extract(m_plan.begin());
      now = next.key();
      next.mapped()();
    }
    now = end;
    return true;
  }

  void after(double seconds, std::function<void()> what) {
    m_plan.emplace(now + seconds, std::move(what));
  }

  void resume() {
    m_givenUp = false;
    giveUpAtWait = -1;
  }

  double now = 0;
  int waits = 0;
  int giveUpAtWait = -1;

 private:
  void note(double seconds) {
    const std::string word = "wait ";
    long milliseconds = std::lround(seconds * 1000);
    if (!m_log.empty() && m_log.back().starts_with(word)) {
      milliseconds += std::stol(m_log.back().substr(word.size()));
      m_log.pop_back();
    }
    m_log.push_back(word + std::to_string(milliseconds));
  }

  std::vector<std::string>& m_log;
  std::multimap<double, std::function<void()>> m_plan;
  bool m_givenUp = false;
};

}  // namespace qv3::test
