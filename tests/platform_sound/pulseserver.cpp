#include "tests/platform_sound/pulseserver.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStringList>

namespace qv3::test {
namespace {

constexpr int kPatienceMs = 20000;
const QStringList kFormat = {"--raw", "--rate=44100", "--channels=1", "--format=s16le",
                             "--latency-msec=50"};

std::unique_ptr<QProcess> startProcess(const QString& program, const QStringList& arguments) {
  auto process = std::make_unique<QProcess>();
  process->setStandardErrorFile(QProcess::nullDevice());
  process->start(program, arguments);
  if (!process->waitForStarted(kPatienceMs)) return nullptr;
  return process;
}

}  // namespace

PulseServer::PulseServer(Microphone microphone) : m_microphone(microphone) {
  const QByteArray folder = m_folder.path().toUtf8();
  qputenv("XDG_RUNTIME_DIR", folder);
  qputenv("HOME", folder);
  qputenv("PULSE_RUNTIME_PATH", folder + "/pulse");
  qputenv("PULSE_SERVER", "unix:" + folder + "/socket");
  qunsetenv("DISPLAY");
}

PulseServer::~PulseServer() {
  kill();
}

bool PulseServer::start() {
  const QString socket = m_folder.filePath("socket");
  QFile::remove(socket);
  if (!m_preloaded.isEmpty()) qputenv("LD_PRELOAD", m_preloaded.toUtf8());
  m_server = startProcess(
      "pulseaudio",
      {"-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "--realtime=no",
       "--high-priority=no", "-L",
       "module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=" + socket, "-L",
       "module-null-sink sink_name=room", "-L", microphoneModule()});
  qunsetenv("LD_PRELOAD");
  const QDeadlineTimer deadline(kPatienceMs);
  bool ready = false;
  while (m_server && !ready && !deadline.hasExpired()) ready = answers();
  if (!ready) return false;
  m_quiet = play("/dev/zero");
  const auto heard = listen();
  const bool awake = m_quiet && heard && heard->waitForReadyRead(kPatienceMs);
  if (heard) end(*heard);
  return awake;
}

QString PulseServer::microphoneModule() const {
  if (m_microphone == Microphone::Room) {
    return "module-remap-source master=room.monitor source_name=microphone";
  }
  return "module-pipe-source source_name=microphone rate=44100 channels=1 format=s16le file=" +
         m_folder.path() + "/microphone";
}

void PulseServer::kill() {
  if (m_quiet) end(*m_quiet);
  if (m_server) end(*m_server);
  m_quiet.reset();
  m_server.reset();
}

std::unique_ptr<QProcess> PulseServer::play(const QString& file) {
  return startProcess("pacat", QStringList{"--playback"} + kFormat + QStringList{file});
}

std::unique_ptr<QProcess> PulseServer::listen() {
  return startProcess("pacat", QStringList{"--record", "-d", "room.monitor"} + kFormat);
}

bool PulseServer::answers() {
  const auto question = startProcess("pactl", {"info"});
  return question && question->waitForFinished(kPatienceMs) && question->exitCode() == 0;
}

void end(QProcess& process) {
  process.kill();
  process.waitForFinished(kPatienceMs);
}

}  // namespace qv3::test
