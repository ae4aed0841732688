#pragma once

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <chrono>
#include <functional>

namespace qv3::test {

/// Far beyond what anything here takes.
inline constexpr std::chrono::milliseconds kPatience{30'000};

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

/// How often this thread's event loop wakes meanwhile: some tens of times a second where nothing is
/// amiss, many thousands where something spins, on a slow machine too.
inline int turnsDuring(const std::function<void()>& work) {
  int turns = 0;
  const QObject counter;
  QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &counter,
                   [&turns] { ++turns; });
  work();
  return turns;
}

}  // namespace qv3::test
