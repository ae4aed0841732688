#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <vector>

namespace qv3::test {

/// meter-sim as a process of its own.
class SimulatedMeter {
 public:
  /// Its link, control pipe and log lie in `folder`. Each frame carries another reading, unless
  /// `options` say what it sends.
  explicit SimulatedMeter(const QString& folder,
                          const QStringList& options = {"--signal", "ramp:0:65000:130"});
  ~SimulatedMeter() { stop(); }
  SimulatedMeter(const SimulatedMeter&) = delete;
  SimulatedMeter& operator=(const SimulatedMeter&) = delete;

  /// The port.
  QString link() const { return m_folder + "/meter"; }
  /// What the latest one sent.
  QString log() const { return logOf(m_runs); }

  /// A new one on the same port.
  void start();
  void stop();
  bool running() const { return m_process.state() == QProcess::Running; }
  void command(const QByteArray& line);

  /// Readings in the order in which they were sent.
  std::vector<int> sent() const;

 private:
  QString logOf(int run) const { return m_folder + "/frames" + QString::number(run); }

  QString m_folder;
  QStringList m_options;
  QProcess m_process;
  int m_runs = 0;
};

}  // namespace qv3::test
