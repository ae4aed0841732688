#include "tests/platform_sound/pulseserver.h"

#include <QDeadlineTimer>
#include <QFile>
#include <csignal>

#include "tests/support/patience.h"

namespace qv3::test {
namespace {

const QStringList kFormat = {"--raw", "--rate=44100", "--channels=1", "--format=s16le",
                             "--latency-msec=50"};

}  // namespace

PulseServer::PulseServer(Microphone microphone) : m_microphone(microphone) {}

void PulseServer::signal(int number) const {
  if (m_server) ::kill(static_cast<pid_t>(m_server->processId()), number);
}

QProcessEnvironment PulseServer::environment() const {
  const QString folder = m_folder.path();
  QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
  variables.insert("XDG_RUNTIME_DIR", folder);
  variables.insert("HOME", folder);
  variables.insert("PULSE_RUNTIME_PATH", folder + "/pulse");
  variables.insert("PULSE_SERVER", "unix:" + folder + "/socket");
  variables.remove("DISPLAY");
  return variables;
}

void PulseServer::useHere() const {
  const QProcessEnvironment variables = environment();
  for (const char* name : {"XDG_RUNTIME_DIR", "HOME", "PULSE_RUNTIME_PATH", "PULSE_SERVER"}) {
    qputenv(name, variables.value(QLatin1String(name)).toUtf8());
  }
  qunsetenv("DISPLAY");
}

PulseServer::~PulseServer() {
  kill();
}

bool PulseServer::start() {
  const QString socket = m_folder.filePath("socket");
  QFile::remove(socket);
  m_server =
      run("pulseaudio",
          {"-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1", "--realtime=no",
           "--high-priority=no", "-L",
           "module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=" + socket,
           "-L", "module-null-sink sink_name=room", "-L", microphoneModule()},
          m_preloaded);
  const QDeadlineTimer deadline(kPatienceMs);
  bool ready = false;
  while (m_server && !ready && !deadline.hasExpired()) ready = control({"info"});
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

std::unique_ptr<QProcess> PulseServer::run(const QString& program, const QStringList& arguments,
                                           const QString& preloaded) const {
  QProcessEnvironment variables = environment();
  if (!preloaded.isEmpty()) variables.insert("LD_PRELOAD", preloaded);
  auto process = std::make_unique<QProcess>();
  process->setProcessEnvironment(variables);
  process->setStandardErrorFile(QProcess::nullDevice());
  process->start(program, arguments);
  if (!process->waitForStarted(kPatienceMs)) return nullptr;
  return process;
}

std::unique_ptr<QProcess> PulseServer::play(const QString& file) {
  return run("pacat", QStringList{"--playback"} + kFormat + QStringList{file});
}

std::unique_ptr<QProcess> PulseServer::listen() {
  return run("pacat", QStringList{"--record", "-d", "room.monitor"} + kFormat);
}

bool PulseServer::control(const QStringList& command) const {
  const auto question = run("pactl", command);
  return question && question->waitForFinished(kPatienceMs) && question->exitCode() == 0;
}

void end(QProcess& process) {
  process.kill();
  process.waitForFinished(kPatienceMs);
}

}  // namespace qv3::test
