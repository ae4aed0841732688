#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace qv3 {

/// A write beyond the size that files may have here is from now on a failed write and no more: the
/// system's own way is to end the program.
void outliveFileSizeLimit();

/// While it lives, SIGTERM, SIGINT and SIGHUP do not end the program but are told to a function
/// from the event loop. One that was ignored when it was made (as under nohup) stays ignored. Only
/// one may live at a time.
class TerminationSignals {
 public:
  /// `received` is told the signal's number.
  explicit TerminationSignals(std::function<void(int)> received);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

  /// Whether the system gave what is needed; without it signals end the program as ever.
  bool installed() const { return m_notifier != nullptr; }

 private:
  struct Previous;

  void deliver();

  std::function<void(int)> m_received;
  int m_readEnd = -1;
  std::unique_ptr<Previous> m_previous;
  std::unique_ptr<QSocketNotifier> m_notifier;
};

}  // namespace qv3
