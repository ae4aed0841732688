#include "tests/step/stepruns.h"

#include <QProcess>
#include <QTemporaryDir>

#include "tests/step/microphone.h"
#include "tests/step/monitorear.h"

namespace qv3::test {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{30000};

/// So much longer than its claps would make it may a run be.
milliseconds longest(int claps) {
  return milliseconds{claps * ClapGaps::kLongest} + kPatience;
}

/// meter-sim, from its first word to the end of this.
class Meter {
 public:
  Meter(const QString& folder, int claps, int ppm)
      : path((folder + "/meter").toStdString()), log((folder + "/frames").toStdString()) {
    const std::string readings = (folder + "/readings").toStdString();
    if (!writeReadings(readings, claps)) return;
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start(METER_SIM,
                    {"--link", QString::fromStdString(path), "--log", QString::fromStdString(log),
                     "--rate-ppm", QString::number(ppm), "--signal",
                     "csv:" + QString::fromStdString(readings), "--csv-end", "hold"});
  }
  ~Meter() { end(m_process); }
  Meter(const Meter&) = delete;
  Meter& operator=(const Meter&) = delete;

  bool answers() { return m_process.waitForReadyRead(static_cast<int>(kPatience.count())); }

  const std::string path;
  const std::string log;

 private:
  QProcess m_process;
};

/// Records until somebody has clapped so often; the session is saved then.
std::string record(RealProgram& program, Microphone& microphone, int claps) {
  if (!program.press("cmdRecord")) return "nothing can be recorded";
  microphone.clap();
  const std::size_t before = microphone.clapped().size();
  const auto enough = [&] {
    return microphone.clapped().size() - before >= static_cast<std::size_t>(claps) + 4;
  };
  if (!runUntil(enough, longest(claps))) return "the claps did not come to an end";
  if (!program.press("cmdStop") || !program.over(kPatience)) return "the recording does not end";
  if (!program.press("cmdSave") || !program.over(kPatience)) return "nothing was saved";
  return {};
}

}  // namespace

std::unique_ptr<PulseServer> skewedServer(int ppm) {
  auto server = std::make_unique<PulseServer>(PulseServer::Microphone::Pipe);
  server->useHere();
  qputenv("STEP_CLOCK_PPM", QByteArray::number(ppm));
  server->preload(QStringLiteral(SKEWED_CLOCK));
  return server->start() ? std::move(server) : nullptr;
}

PlayResult playSession(PulseServer&, const PlayRun& run) {
  PlayResult result;
  MonitorEar ear(run.soundPpm);
  if (!ear.open()) return {"no sound server", {}};
  const QTemporaryDir home;
  const auto times = makeSession(home.filePath("001").toStdString(), run.claps, run.meterPpm);
  RealProgram program(home.path(), {});
  if (times.empty() || !program.start() || !program.load()) return {"no session", {}};
  const Eye eye = run.eye(program.window());
  if (!program.press("cmdPlay")) return {"the session cannot be played", {}};
  if (!program.over(longest(run.claps))) return {"the session does not end", {}};
  // What was put out last is heard a little later.
  const Moment end = momentNow() + 500;
  static_cast<void>(runUntil([end] { return momentNow() > end; }, kPatience));
  result.played = comparePlayed(times, program.positions(), ear.heard(), eye());
  return result;
}

RecordResult recordSession(PulseServer& server, const RecordRun& run) {
  Microphone microphone(run.soundPpm);
  const QString pipe = server.folder() + QStringLiteral("/microphone");
  if (!microphone.plugIn(pipe.toStdString())) return {"no sound server", {}, {}};
  const QTemporaryDir home;
  // The meter sends from the moment that it is found; some seconds pass until a recording runs.
  Meter meter(home.path(), run.claps + 20, run.meterPpm);
  if (!meter.answers()) return {"no simulated meter", {}, {}};
  RealProgram program(home.path(), meter.path);
  if (!program.start()) return {"the meter is not found", {}, {}};
  const std::string error = record(program, microphone, run.claps);
  if (!error.empty()) return {error, {}, {}};
  const Recorded recorded{sentChanges(meter.log), recordedChanges(program.file("Prefix_001.qvd")),
                          microphone.clapped(), recordedClaps(program.file("Prefix_001.wav"))};
  return {{}, compareRecorded(recorded), microphone.lost()};
}

}  // namespace qv3::test
