#pragma once

#include <time.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <chrono>
#include <functional>

namespace qv3::test {

inline constexpr std::chrono::milliseconds kPatience{10'000};

/// Runs the event loop until something has happened; false if it never does.
inline bool eventually(const std::function<bool()>& happened,
                       std::chrono::milliseconds patience = kPatience) {
  const QDeadlineTimer limit(patience);
  QTimer look;
  look.start(5);
  while (!happened()) {
    if (limit.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

/// Runs the event loop for as long and returns the processor time that this took of the thread.
inline std::chrono::nanoseconds costOf(std::chrono::milliseconds time) {
  const auto used = [] {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
  };
  const auto before = used();
  eventually([] { return false; }, time);
  return used() - before;
}

}  // namespace qv3::test
