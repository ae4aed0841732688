#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

/// Ends a test that would wait for ever; far beyond what anything here takes.
constexpr std::chrono::seconds kPatience(20);

bool readable(int fd) {
  pollfd file{fd, POLLIN, 0};
  return poll(&file, 1, 20) == 1 && (file.revents & POLLIN) != 0;
}

bool eventually(const std::function<bool()>& condition) {
  const auto end = steady_clock::now() + kPatience;
  while (!condition()) {
    if (steady_clock::now() > end) return false;
    poll(nullptr, 0, 2);
  }
  return true;
}

/// The host's end of the port.
class Host {
 public:
  explicit Host(const fs::path& path) : m_fd(open(path.c_str(), O_RDWR | O_NOCTTY)) {
    EXPECT_GE(m_fd, 0) << path;
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
    const bool found = eventually([&] {
      end = m_heard.find('\r');
      if (end == std::string::npos) listen();
      return end != std::string::npos;
    });
    EXPECT_TRUE(found) << "only \"" << m_heard << "\" came";
    const std::string text = m_heard.substr(0, end);
    m_heard.erase(0, found ? end + 1 : m_heard.size());
    return text;
  }
  bool hungUp() const {
    pollfd file{m_fd, POLLIN, 0};
    return poll(&file, 1, 0) == 1 && (file.revents & POLLHUP) != 0;
  }

 private:
  void listen() {
    std::array<char, 256> buffer;
    if (!readable(m_fd)) return;
    const ssize_t count = read(m_fd, buffer.data(), buffer.size());
    if (count > 0) m_heard.append(buffer.data(), static_cast<std::size_t>(count));
  }

  int m_fd;
  std::string m_heard;
};

/// The program itself, in a folder of its own.
class MeterSim : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "meter-sim-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder = pattern;
  }
  void TearDown() override {
    if (m_pid > 0) {
      kill(m_pid, SIGKILL);
      waitpid(m_pid, nullptr, 0);
    }
    closeOutput();
    fs::remove_all(folder);
  }

  void launch(std::vector<std::string> arguments) {
    closeOutput();
    ASSERT_EQ(pipe2(m_output.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, m_output[1], STDOUT_FILENO);
    arguments.insert(arguments.begin(), METER_SIM);
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    const int result = posix_spawn(&m_pid, METER_SIM, &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(m_output[1]);
    ASSERT_EQ(result, 0) << "cannot start " << METER_SIM;
  }
  /// With link, control pipe and log in the folder; ready when it has named its terminal.
  void start(std::vector<std::string> more = {}) {
    std::vector<std::string> arguments{"--link",           link().string(), "--control",
                                       control().string(), "--log",         log().string()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    launch(arguments);
    const std::string path = outputLine();
    ASSERT_EQ(path, fs::read_symlink(link()).string());
  }
  std::string outputLine() {
    std::string text;
    char c = 0;
    while (eventually([&] { return readable(m_output[0]); }) && read(m_output[0], &c, 1) == 1) {
      if (c == '\n') return text;
      text += c;
    }
    return text;
  }
  int exitStatus() {
    int status = 0;
    if (!eventually([&] { return waitpid(m_pid, &status, WNOHANG) == m_pid; })) return -1;
    m_pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  void command(const std::string& line) { std::ofstream(control()) << line << "\n" << std::flush; }
  void signal(int number) { kill(m_pid, number); }

  int framesLogged() const {
    std::ifstream file(log());
    int count = 0;
    for (std::string line; std::getline(file, line);) ++count;
    return count;
  }

  fs::path link() const { return folder / "meter"; }
  fs::path control() const { return folder / "control"; }
  fs::path log() const { return folder / "log"; }
  fs::path folder;

 private:
  void closeOutput() {
    if (m_output[0] >= 0) close(m_output[0]);
    m_output = {-1, -1};
  }

  pid_t m_pid = -1;
  std::array<int, 2> m_output{-1, -1};
};

void connect(Host& host, const std::string& firstFrame) {
  host.say("Q\rQ\rV\r");
  EXPECT_EQ(host.line(), "V,QV3A,1.04,20417");
  host.say("U\rR\r");
  EXPECT_EQ(host.line(), firstFrame);
}

TEST_F(MeterSim, IdentifiesStreamsAndQuietsOverTheTerminal) {
  start({"--signal", "constant:6699"});
  Host host(link());
  connect(host, "P1A2B");
  for (int i = 0; i < 10; ++i) EXPECT_EQ(host.line(), "P1A2B");
  command("press");
  ASSERT_TRUE(eventually([&] { return host.line() == "T1A2B"; }));
  host.say("Q\rV\r");
  std::string last = host.line();
  while (last == "P1A2B") last = host.line();
  EXPECT_EQ(last, "V,QV3A,1.04,20417");
}

TEST_F(MeterSim, NobodyReadsThenAReopenedPortHearsThePresent) {
  start({"--signal", "ramp:0:65000:1300"});  // a frame more, a reading more
  {
    Host host(link());
    connect(host, "P0000");
  }
  ASSERT_TRUE(eventually([&] { return framesLogged() > 75; }));
  Host host(link());
  const int logged = framesLogged();
  const int first = std::stoi(host.line().substr(1), nullptr, 16);
  EXPECT_GE(first, logged - 25) << "older than the 0.3 s that may wait, and some leeway";
}

TEST_F(MeterSim, APortBarredByAKilledProgramOpensAgain) {
  start();
  int barred = 0;
  {
    Host host(link());
    ASSERT_EQ(ioctl(host.fd(), TIOCEXCL), 0);
  }
  // A fresh open would fail for all but the superuser, so the flag is asked for beside the check.
  ASSERT_TRUE(eventually([&] {
    const int fd = open(link().c_str(), O_RDWR | O_NOCTTY);
    if (fd < 0) return false;
    ioctl(fd, TIOCGEXCL, &barred);
    close(fd);
    return barred == 0;
  }));
}

TEST_F(MeterSim, HangsUpAndReturnsAtTheSameLink) {
  start({"--signal", "constant:6699"});
  Host before(link());
  connect(before, "P1A2B");
  command("hangup");
  ASSERT_TRUE(eventually([&] { return before.hungUp(); }));
  EXPECT_FALSE(fs::is_symlink(link()));
  command("return");
  const std::string path = outputLine();
  EXPECT_EQ(fs::read_symlink(link()).string(), path);
  Host after(path);
  connect(after, "P1A2B");
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
    signal(number);
    EXPECT_EQ(exitStatus(), 0);
    EXPECT_FALSE(fs::exists(fs::symlink_status(link())));
    EXPECT_FALSE(fs::exists(control()));
  }
}

TEST_F(MeterSim, AListThatEndsEndsTheProgram) {
  const fs::path list = folder / "readings.csv";
  std::ofstream(list) << "1\n2\n# end\n";
  start({"--signal", "csv:" + list.string(), "--csv-end", "exit", "--autostart"});
  Host host(link());
  EXPECT_EQ(host.line(), "P0001");
  EXPECT_EQ(host.line(), "P0002");
  EXPECT_EQ(exitStatus(), 0);
}

TEST_F(MeterSim, WrongOptionsEndWithTwoAndOccupiedPlacesWithOne) {
  const fs::path file = folder / "file";
  std::ofstream(file) << "keep me\n";
  const std::vector<std::pair<std::vector<std::string>, int>> rows{
      {{"--nonsense"}, 2},
      {{"--signal", "csv:" + (folder / "missing.csv").string()}, 2},
      {{"--link", file.string()}, 1},
      {{"--control", file.string()}, 1},
      {{"--log", (folder / "missing" / "log").string()}, 1},
      {{"--help"}, 0},
  };
  for (const auto& [arguments, status] : rows) {
    launch(arguments);
    EXPECT_EQ(exitStatus(), status) << arguments.back();
  }
  EXPECT_EQ(fs::file_size(file), 8U);
}

}  // namespace
