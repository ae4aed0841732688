#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace qv3 {

/// What the machine itself adds to a latency: threads, as many as there are processors, that do
/// nothing but wake every millisecond and note how late they were.
class Sleepers {
 public:
  Sleepers() {
    for (unsigned n = 0; n < std::max(1U, std::thread::hardware_concurrency()); ++n) {
      m_threads.emplace_back([this] { run(); });
    }
  }
  ~Sleepers() {
    m_ended = true;
    for (std::thread& thread : m_threads) thread.join();
  }
  Sleepers(const Sleepers&) = delete;
  Sleepers& operator=(const Sleepers&) = delete;

  /// A line: how often one was more than `kLong` late, and the longest.
  void print() const {
    std::printf("  a sleeping thread was late by more than %.0f ms: %d times, at most %.1f ms\n",
                kLong, m_count.load(), m_most.load());
  }

 private:
  static constexpr double kLong = 8;

  void run() {
    using std::chrono::steady_clock;
    auto due = steady_clock::now();
    while (!m_ended) {
      due += std::chrono::milliseconds(1);
      std::this_thread::sleep_until(due);
      const auto now = steady_clock::now();
      note(std::chrono::duration<double, std::milli>(now - due).count());
      due = std::max(due, now);
    }
  }

  void note(double late) {
    if (late > kLong) ++m_count;
    double most = m_most;
    while (late > most && !m_most.compare_exchange_weak(most, late)) {
    }
  }

  std::atomic<bool> m_ended = false;
  std::atomic<int> m_count = 0;
  std::atomic<double> m_most = 0;
  std::vector<std::thread> m_threads;
};

}  // namespace qv3
