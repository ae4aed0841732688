#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <array>
#include <csignal>
#include <functional>
#include <string>

namespace {

/// Ends a test that would wait for ever; far beyond what anything here takes.
constexpr int kPatienceMs = 20000;

bool eventually(const std::function<bool()>& condition) {
  const QDeadlineTimer end(kPatienceMs);
  while (!condition()) {
    if (end.hasExpired()) return false;
    poll(nullptr, 0, 2);
  }
  return true;
}

/// The host's end of the port.
class Host {
 public:
  explicit Host(const QString& path)
      : m_fd(open(path.toUtf8().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK)) {
    EXPECT_GE(m_fd, 0) << path.toStdString();
  }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host() { close(m_fd); }

  int fd() const { return m_fd; }
  void say(const std::string& text) {
    ASSERT_EQ(write(m_fd, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  /// The next line without its CR; what follows it is kept.
  std::string line() {
    std::size_t end = std::string::npos;
    EXPECT_TRUE(eventually([&] {
      std::array<char, 256> buffer;
      const ssize_t count = read(m_fd, buffer.data(), buffer.size());
      if (count > 0) m_heard.append(buffer.data(), static_cast<std::size_t>(count));
      end = m_heard.find('\r');
      return end != std::string::npos;
    })) << "only \""
        << m_heard << "\" came";
    const std::string text = m_heard.substr(0, end);
    m_heard.erase(0, text.size() + 1);
    return text;
  }
  bool hungUp() const {
    pollfd file{m_fd, POLLIN, 0};
    return poll(&file, 1, 0) == 1 && (file.revents & POLLHUP) != 0;
  }
  void connect(const std::string& firstFrame) {
    say("Q\rQ\rV\r");
    EXPECT_EQ(line(), "V,QV3A,1.04,20417");
    say("U\rR\r");
    EXPECT_EQ(line(), firstFrame);
  }

 private:
  int m_fd;
  std::string m_heard;
};

/// The program itself, in a folder of its own.
struct MeterSim : testing::Test {
  QTemporaryDir folder;
  QProcess process;

  ~MeterSim() override {
    process.kill();
    process.waitForFinished(kPatienceMs);
  }

  /// With link, control pipe and log in the folder; ready when it has named its terminal.
  void start(const QStringList& more = {}) {
    process.start(
        METER_SIM,
        QStringList{"--link", link(), "--control", path("control"), "--log", path("log")} + more);
    const QString terminal = outputLine();
    ASSERT_EQ(terminal.toStdString(), QFile::symLinkTarget(link()).toStdString());
  }
  QString outputLine() {
    while (!process.canReadLine() && process.waitForReadyRead(kPatienceMs)) continue;
    return QString::fromUtf8(process.readLine()).trimmed();
  }
  int exitStatus() {
    const bool ended =
        process.state() == QProcess::NotRunning || process.waitForFinished(kPatienceMs);
    return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
  }
  void command(const QByteArray& line) {
    QFile pipe(path("control"));
    ASSERT_TRUE(pipe.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    pipe.write(line + '\n');
  }
  qsizetype framesLogged() {
    QFile file(path("log"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().count('\n') : 0;
  }
  void write(const QString& name, const QByteArray& contents) {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(contents);
  }
  QString path(const QString& name) const { return folder.filePath(name); }
  QString link() const { return path("meter"); }
};

TEST_F(MeterSim, NobodyReadsThenAReopenedPortHearsThePresent) {
  start({"--signal", "ramp:0:65000:1300"});  // a frame more, a reading more
  Host(link()).connect("P0000");
  ASSERT_TRUE(eventually([&] { return framesLogged() > 75; }));
  Host host(link());
  const qsizetype logged = framesLogged();
  const int first = std::stoi(host.line().substr(1), nullptr, 16);
  EXPECT_GE(first, logged - 25) << "older than the 0.3 s that may wait, and some leeway";
}

TEST_F(MeterSim, APortBarredByAKilledProgramOpensAgain) {
  start();
  ASSERT_EQ(ioctl(Host(link()).fd(), TIOCEXCL), 0);
  // A fresh open would fail for all but the superuser, so the flag is asked for beside the check.
  int barred = 0;
  ASSERT_TRUE(eventually([&] {
    const int fd = open(link().toUtf8().constData(), O_RDWR | O_NOCTTY);
    if (fd < 0) return false;
    ioctl(fd, TIOCGEXCL, &barred);
    close(fd);
    return barred == 0;
  }));
}

TEST_F(MeterSim, StreamsHangsUpAndReturnsAtTheSameLink) {
  start({"--signal", "constant:6699"});
  Host before(link());
  before.connect("P1A2B");
  command("press");
  ASSERT_TRUE(eventually([&] { return before.line() == "T1A2B"; }));
  command("hangup");
  ASSERT_TRUE(eventually([&] { return before.hungUp(); }));
  EXPECT_FALSE(QFileInfo(link()).isSymLink());
  command("return");
  const QString terminal = outputLine();
  EXPECT_EQ(QFile::symLinkTarget(link()).toStdString(), terminal.toStdString());
  Host(terminal).connect("P1A2B");
}

TEST_F(MeterSim, WhatWasSentIsReadBeforeTheEnd) {
  start();
  Host host(link());
  command("send 1\\r2\\r3\\r\nquit");
  int unread = 0;
  ASSERT_TRUE(eventually([&] {
    ioctl(host.fd(), FIONREAD, &unread);
    return unread == 6 || host.hungUp();
  }));
  ASSERT_FALSE(host.hungUp());
  for (const char* line : {"1", "2", "3"}) EXPECT_EQ(host.line(), line);
  EXPECT_EQ(exitStatus(), 0);
  EXPECT_TRUE(host.hungUp());
}

TEST_F(MeterSim, ASignalLeavesNothingBehind) {
  for (const int number : {SIGTERM, SIGINT}) {
    start({"--autostart"});
    kill(static_cast<pid_t>(process.processId()), number);
    EXPECT_EQ(exitStatus(), 0);
    EXPECT_FALSE(QFileInfo(link()).isSymLink());
    EXPECT_FALSE(QFile::exists(path("control")));
  }
}

TEST_F(MeterSim, AListThatEndsEndsTheProgram) {
  write("readings.csv", "1\n2\n# end\n");
  start({"--signal", "csv:" + path("readings.csv"), "--csv-end", "exit", "--autostart"});
  Host host(link());
  EXPECT_EQ(host.line(), "P0001");
  EXPECT_EQ(host.line(), "P0002");
  EXPECT_EQ(exitStatus(), 0);
}

TEST_F(MeterSim, WrongOptionsEndWithTwoAndOccupiedPlacesWithOne) {
  write("file", "keep me\n");
  const std::pair<QStringList, int> rows[] = {{{"--nonsense"}, 2},
                                              {{"--signal", "csv:" + path("missing.csv")}, 2},
                                              {{"--link", path("file")}, 1},
                                              {{"--control", path("file")}, 1},
                                              {{"--log", path("missing/log")}, 1},
                                              {{"--help"}, 0}};
  for (const auto& [arguments, status] : rows) {
    process.start(METER_SIM, arguments);
    EXPECT_EQ(exitStatus(), status) << arguments.back().toStdString();
  }
  EXPECT_EQ(QFileInfo(path("file")).size(), 8);
}

}  // namespace
