#pragma once

#include <QProcess>
#include <QString>
#include <vector>

namespace qv3::test {

/// meter-sim as a process of its own. Each frame carries another reading.
class SimulatedMeter {
 public:
  /// Its link, control pipe and log lie in `folder`.
  explicit SimulatedMeter(const QString& folder) : m_folder(folder) { start(); }
  ~SimulatedMeter() { stop(); }
  SimulatedMeter(const SimulatedMeter&) = delete;
  SimulatedMeter& operator=(const SimulatedMeter&) = delete;

  /// The port.
  QString link() const { return m_folder + "/meter"; }

  /// A new one on the same port.
  void start();
  void stop();
  void command(const QByteArray& line);

  /// Readings in the order in which they were sent.
  std::vector<int> sent() const;

 private:
  QString log(int run) const { return m_folder + "/frames" + QString::number(run); }

  QString m_folder;
  QProcess m_process;
  int m_runs = 0;
};

}  // namespace qv3::test
