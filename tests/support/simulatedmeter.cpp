#include "tests/support/simulatedmeter.h"

#include <QFile>

#include "tests/support/patience.h"

namespace qv3::test {

SimulatedMeter::SimulatedMeter(const QString& folder, const QStringList& options)
    : m_folder(folder), m_options(options) {
  start();
}

void SimulatedMeter::start() {
  ++m_runs;
  m_process.start(
      METER_SIM, QStringList{"--link", link(), "--control", m_folder + "/control", "--log", log()} +
                     m_options);
  while (!m_process.canReadLine() && m_process.waitForReadyRead(kPatienceMs)) {
  }
  m_process.readLine();
}

void SimulatedMeter::stop() {
  m_process.terminate();
  m_process.waitForFinished(kPatienceMs);
}

void SimulatedMeter::command(const QByteArray& line) {
  QFile pipe(m_folder + "/control");
  if (pipe.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) pipe.write(line + '\n');
}

std::vector<int> SimulatedMeter::sent() const {
  std::vector<int> readings;
  for (int run = 1; run <= m_runs; ++run) {
    QFile file(logOf(run));
    if (!file.open(QIODevice::ReadOnly)) continue;
    for (const QByteArray& line : file.readAll().split('\n')) {
      const QByteArray frame = line.mid(line.indexOf(' ') + 1);
      if (frame.size() == 5) readings.push_back(frame.mid(1).toInt(nullptr, 16));
    }
  }
  return readings;
}

}  // namespace qv3::test
