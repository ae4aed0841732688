#include "tests/step/stepruns.h"

#include <QTemporaryDir>
#include <stdexcept>

#include "tests/step/microphone.h"
#include "tests/step/monitorear.h"
#include "tests/support/simulatedmeter.h"

namespace qv3::test {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{30000};

/// So much longer than its claps would make it may a run be.
milliseconds longest(int claps) {
  return milliseconds{claps * ClapGaps::kLongest} + kPatience;
}

/// Records until somebody has clapped so often; the session is saved then.
void record(RealProgram& program, Microphone& microphone, int claps) {
  program.press("cmdRecord");
  microphone.clap();
  const std::size_t enough = microphone.clapped().size() + static_cast<std::size_t>(claps) + 4;
  runUntil([&] { return microphone.clapped().size() >= enough; }, longest(claps), "nobody claps");
  for (const char* button : {"cmdStop", "cmdSave"}) {
    program.press(button);
    program.finish(kPatience);
  }
}

}  // namespace

std::unique_ptr<PulseServer> skewedServer(int ppm) {
  auto server = std::make_unique<PulseServer>(PulseServer::Microphone::Pipe);
  server->useHere();
  qputenv("STEP_CLOCK_PPM", QByteArray::number(ppm));
  server->preload(QStringLiteral(SKEWED_CLOCK));
  if (!server->start()) throw std::runtime_error("no sound server");
  return server;
}

Played playSession(PulseServer&, const PlayRun& run) {
  MonitorEar ear(run.soundPpm);
  const QTemporaryDir home;
  const auto times = makeSession(home.filePath("001").toStdString(), run.claps, run.meterPpm);
  RealProgram program(home.path(), {});
  program.start();
  program.load();
  const Eye eye = run.eye(program.window());
  program.press("cmdPlay");
  program.finish(longest(run.claps));
  // What was put out last is heard a little later.
  const Moment end = momentNow() + 500;
  runUntil([end] { return momentNow() > end; }, kPatience, "time stands still");
  return comparePlayed(times, program.positions(), ear.heard(), eye());
}

RecordResult recordSession(PulseServer& server, const RecordRun& run) {
  Microphone microphone(run.soundPpm, (server.folder() + "/microphone").toStdString());
  const QTemporaryDir home;
  const QString readings = home.filePath("readings");
  // The meter sends from the moment that it is found; some seconds pass until a recording runs.
  writeReadings(readings.toStdString(), run.claps + 20);
  const SimulatedMeter meter(home.path(), {"--rate-ppm", QString::number(run.meterPpm), "--signal",
                                           "csv:" + readings, "--csv-end", "hold"});
  RealProgram program(home.path(), meter.link().toStdString());
  program.start();
  record(program, microphone, run.claps);
  const Recorded recorded{sentChanges(meter.log().toStdString()),
                          recordedChanges(program.file("Prefix_001.qvd")), microphone.clapped(),
                          recordedClaps(program.file("Prefix_001.wav"))};
  return {compareRecorded(recorded), microphone.lost()};
}

}  // namespace qv3::test
