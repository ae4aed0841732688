#include "platform/qtserialport.h"

#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <atomic>
#include <cerrno>
#include <functional>
#include <thread>
#include <utility>

#include "link/metersearch.h"
#include "platform/clock.h"
#include "platform/errortexts.h"
#include "platform/portdiagnosis.h"
#include "platform/pumpedwait.h"
#include "platform/systemprobes.h"
#include "tests/platform/eventloop.h"
#include "tests/platform/pty.h"
#include "tests/platform/unprivileged.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;
using test::eventually;
using test::Pty;

constexpr int kStill = 400;  // turns of the event loop, in 200 ms

class Hearer : public PortListener {
 public:
  void charactersArrived(std::string_view characters) override {
    ++deliveries;
    total += characters.size();
    largest = std::max(largest, characters.size());
    if (keep) received += characters;
  }
  void portLost() override { ++losses; }

  bool keep = true;
  std::string received;
  int deliveries = 0;
  int losses = 0;
  std::size_t total = 0;
  std::size_t largest = 0;
};

class SerialPort : public testing::Test {
 protected:
  SerialPort() { m_port.setListener(&m_hearer); }

  /// Opens the port; empty if it is open. The system may give out the number of a pseudo terminal
  /// whose lock file another process is just about to remove.
  static std::string reasonAgainst(QtSerialPort& port, const Pty& pty) {
    PortResult result;
    eventually([&] { return (result = port.openConfigured(pty.path())).fault != PortFault::Busy; });
    return result.reason;
  }
  std::string reasonAgainst(const Pty& pty) { return reasonAgainst(m_port, pty); }

  bool arrives(const std::string& characters) {
    return eventually([&] { return m_hearer.received == characters; });
  }

  static bool reaches(const Pty& pty, const std::string& characters) {
    std::string all;
    return eventually([&] { return (all += pty.read()) == characters; });
  }

  Hearer m_hearer;
  QtSerialPort m_port;
};

std::string everyCharacter() {
  std::string characters;
  for (int code = 0; code < 256; ++code) characters += static_cast<char>(code);
  return characters;
}

TEST_F(SerialPort, CarriesEveryCharacterUnchanged) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  EXPECT_TRUE(m_port.isOpen());
  m_port.send(everyCharacter());
  EXPECT_TRUE(reaches(pty, everyCharacter()));
  pty.write(everyCharacter());
  EXPECT_TRUE(arrives(everyCharacter()));
  EXPECT_EQ(pty.read(), "") << "nothing is echoed";
  EXPECT_EQ(m_hearer.losses, 0);
}

TEST_F(SerialPort, RunsAt9600BaudWithoutParityAndHandshaking) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  termios line{};
  ASSERT_EQ(tcgetattr(pty.fd(), &line), 0);
  EXPECT_EQ(cfgetospeed(&line), speed_t{B9600});
  EXPECT_EQ(cfgetispeed(&line), speed_t{B9600});
  EXPECT_EQ(line.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), tcflag_t{CS8});
  EXPECT_EQ(line.c_iflag & (IXON | IXOFF), tcflag_t{0});
}

/// Whether so many characters wait at the far end of the line; the system hands them on by itself.
bool waitAt(int farEnd, int characters) {
  const QDeadlineTimer limit(test::kPatience);
  int waiting = 0;
  while (waiting != characters && !limit.hasExpired()) {
    if (ioctl(farEnd, FIONREAD, &waiting) != 0) return false;
    std::this_thread::yield();
  }
  return waiting == characters;
}

TEST_F(SerialPort, DeliversAllThatWaitsAtOnce) {
  const Pty pty;
  const int farEnd = open(pty.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(reasonAgainst(pty), "");
  std::string frames;
  for (int n = 0; n < 50; ++n) frames += "P1A2B\r";
  for (std::size_t at = 0; at < frames.size(); at += 6) pty.write(frames.substr(at, 6));
  ASSERT_TRUE(waitAt(farEnd, 300));
  close(farEnd);
  EXPECT_TRUE(arrives(frames));
  EXPECT_EQ(m_hearer.deliveries, 1);
}

TEST_F(SerialPort, AHangUpClosesThePortIsSaidOnceAndCostsNothingAfterwards) {
  enum class Before { Nothing, Characters, Unread, Sent };
  for (int round = 0; round < 5; ++round) {
    for (const Before before :
         {Before::Nothing, Before::Characters, Before::Unread, Before::Sent}) {
      Pty pty;
      m_hearer = {};
      ASSERT_EQ(reasonAgainst(pty), "");
      if (before != Before::Nothing) pty.write("P1A2B\r");
      if (before == Before::Characters) {
        ASSERT_TRUE(arrives("P1A2B\r"));
      }
      if (before == Before::Sent) m_port.send("V\r");
      pty.hangUp();
      EXPECT_TRUE(eventually([&] { return m_hearer.losses > 0; }));
      EXPECT_FALSE(m_port.isOpen());
      m_port.send("V\r");
      if (round == 0) {
        EXPECT_LT(test::turnsIn(milliseconds(200)), kStill);
      }
      m_port.close();
      EXPECT_EQ(m_hearer.losses, 1);
    }
  }
}

/// What the serial class makes of a line that went depends on an error left over from before.
TEST_F(SerialPort, AHangUpIsNoticedWhateverErrorStoodBefore) {
  for (const int error : {0, EAGAIN, EIO, EBADF, EACCES, ENODEV}) {
    Pty pty;
    m_hearer = {};
    ASSERT_EQ(reasonAgainst(pty), "");
    pty.hangUp();
    EXPECT_TRUE(eventually([&] {
      errno = error;
      return m_hearer.losses > 0;
    })) << error;
    EXPECT_FALSE(m_port.isOpen()) << error;
  }
}

/// Does something once, when the next call is about to be taken from the event queue.
class BeforeNextQueuedCall : public QObject {
 public:
  explicit BeforeNextQueuedCall(std::function<void()> what) : m_what(std::move(what)) {
    QCoreApplication::instance()->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::MetaCall && m_what) std::exchange(m_what, {})();
    return false;
  }
  bool done() const { return !m_what; }

 private:
  std::function<void()> m_what;
};

TEST_F(SerialPort, AReopenBetweenAnErrorAndItsReportIsNotClosedByIt) {
  Pty gone;
  const Pty pty;
  ASSERT_EQ(reasonAgainst(gone), "");
  gone.hangUp();
  const BeforeNextQueuedCall reopen([&] { EXPECT_TRUE(m_port.openConfigured(pty.path()).ok()); });
  EXPECT_TRUE(eventually([&] { return reopen.done(); }));
  pty.write("P1A2B\r");
  EXPECT_TRUE(arrives("P1A2B\r"));
  EXPECT_EQ(m_hearer.losses, 0);
}

TEST_F(SerialPort, ALineThatWentBeforeAReopenSaysNothingOfTheNewOne) {
  Pty gone;
  const Pty pty;
  ASSERT_EQ(reasonAgainst(gone), "");
  gone.hangUp();
  ASSERT_EQ(reasonAgainst(pty), "");
  pty.write("P1A2B\r");
  EXPECT_TRUE(arrives("P1A2B\r"));
  EXPECT_EQ(m_hearer.losses, 0);
  EXPECT_TRUE(m_port.isOpen());
}

TEST_F(SerialPort, OpensAgainAfterACloseOrALoss) {
  const Pty pty;
  for (int n = 0; n < 3; ++n) {
    ASSERT_EQ(reasonAgainst(pty), "") << n;
    m_port.close();
    m_port.close();
    EXPECT_FALSE(m_port.isOpen());
  }
  {
    Pty gone;
    ASSERT_EQ(reasonAgainst(gone), "");
    gone.hangUp();
    EXPECT_TRUE(eventually([&] { return m_hearer.losses == 1; }));
  }
  ASSERT_EQ(reasonAgainst(pty), "");
  pty.write("P1A2B\r");
  EXPECT_TRUE(arrives("P1A2B\r"));
}

TEST_F(SerialPort, WhatCameBeforeAnOpenIsDropped) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  pty.write("old");
  m_port.close();
  pty.write("older");
  ASSERT_EQ(reasonAgainst(pty), "");
  pty.write("new");
  EXPECT_TRUE(arrives("new"));
}

TEST_F(SerialPort, WhatIsNoUsableDeviceIsRefusedWithItsReason) {
  const QTemporaryDir folder;
  const std::string file = folder.filePath("file").toStdString();
  ASSERT_EQ(mknod(file.c_str(), S_IFREG | 0600, 0), 0);
  const Pty taken;
  QtSerialPort other;
  ASSERT_EQ(reasonAgainst(other, taken), "");
  const struct {
    std::string path;
    PortFault fault;
    std::string reason;
  } rows[] = {
      {"", PortFault::NotFound, errortext::kNoDevice},
      {folder.filePath("missing").toStdString(), PortFault::NotFound, errortext::kNoDevice},
      {file + "/below", PortFault::NotFound, errortext::kNoDevice},
      {folder.path().toStdString(), PortFault::Other, errortext::kFolder},
      {file, PortFault::Other, errortext::kNotSerial},
      {"/dev/null", PortFault::Other, errortext::kNotSerial},
      {taken.path(), PortFault::Busy, errortext::kBusy},
  };
  for (const auto& row : rows) {
    const Pty before;
    ASSERT_EQ(reasonAgainst(before), "");
    const PortResult result = m_port.openConfigured(row.path);
    EXPECT_EQ(result.fault, row.fault) << row.path;
    EXPECT_EQ(result.reason, row.reason) << row.path;
    EXPECT_FALSE(m_port.isOpen()) << row.path;
  }
  EXPECT_TRUE(other.isOpen());
  eventually([&] { return m_hearer.losses > 0; }, milliseconds(50));
  EXPECT_EQ(m_hearer.losses, 0) << "a refusal is no loss";
}

/// A group of this system, not the administrator's, that the test may give a node to.
group* someGroup() {
  const gid_t own = getegid();
  if (own != 0) return getgrgid(own);
  setgrent();
  group* entry = getgrent();
  while (entry && entry->gr_gid == 0) entry = getgrent();
  endgrent();
  return entry;
}

TEST_F(SerialPort, MissingPermissionNamesTheGroupToJoin) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  m_port.close();
  const group* const users = someGroup();
  ASSERT_NE(users, nullptr);
  const std::string group = users->gr_name;
  ASSERT_EQ(chown(pty.path().c_str(), static_cast<uid_t>(-1), users->gr_gid), 0);
  const struct {
    mode_t mode;
    std::string reason;
  } rows[] = {{0060, errortext::notInGroup(group)},
              {0020, errortext::kOnlyItsOwner},
              {0000, errortext::kOnlyItsOwner}};
  for (const auto& row : rows) {
    ASSERT_EQ(chmod(pty.path().c_str(), row.mode), 0);
    const test::Unprivileged user;
    const PortResult result = m_port.openConfigured(pty.path());
    EXPECT_EQ(result.fault, PortFault::NoPermission);
    EXPECT_EQ(result.reason, row.reason);
    EXPECT_FALSE(m_port.isOpen());
  }
}

/// A process beside this one that has done something to the device.
class Other {
 public:
  Other(const Pty& pty, bool (*with)(const std::string& path)) {
    int ready[2];
    if (pipe(ready) != 0) throw std::runtime_error("no pipe");
    m_process = fork();
    if (m_process == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (with(pty.path())) [[maybe_unused]]
        const auto n = write(ready[1], "1", 1);
      close(ready[1]);
      for (;;) pause();
    }
    close(ready[1]);
    char mark = 0;
    m_ready = read(ready[0], &mark, 1) == 1;
    close(ready[0]);
  }
  ~Other() {
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
  }
  Other(const Other&) = delete;
  Other& operator=(const Other&) = delete;

  bool ready() const { return m_ready; }
  std::string told() const { return "(process " + std::to_string(m_process) + ")"; }

 private:
  pid_t m_process = 0;
  bool m_ready = false;
};

TEST_F(SerialPort, AnotherProgramThatLockedOrOpenedTheDeviceIsNamed) {
  const SystemProbes probes;
  const struct {
    const char* what;
    bool (*with)(const std::string& path);
    bool busy;
  } rows[] = {
      {"opened", [](const std::string& path) { return open(path.c_str(), O_RDWR | O_NOCTTY) >= 0; },
       false},
      {"locked",
       [](const std::string& path) {
         return flock(open(path.c_str(), O_RDWR | O_NOCTTY), LOCK_EX) == 0;
       },
       true},
      {"this program once more",
       [](const std::string& path) { return (new QtSerialPort)->openConfigured(path).ok(); }, true},
  };
  for (const auto& row : rows) {
    const Pty pty;
    const Other other(pty, row.with);
    ASSERT_TRUE(other.ready()) << row.what;
    const PortResult opened = m_port.openConfigured(pty.path());
    EXPECT_EQ(opened.fault, row.busy ? PortFault::Busy : PortFault::None) << row.what;
    m_port.close();
    const PortResult busy = diagnosed({PortFault::Busy, ""}, pty.path(), probes);
    EXPECT_THAT(busy.reason, testing::HasSubstr(other.told())) << row.what;
    EXPECT_THAT(busy.help, testing::HasSubstr("kill")) << row.what;
  }
}

TEST_F(SerialPort, SendingToALineThatTakesNothingNeitherWaitsNorPilesUp) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  QElapsedTimer time;
  time.start();
  for (int n = 0; n < 100'000; ++n) m_port.send("Q\r");
  eventually([] { return false; }, milliseconds(50));
  for (int n = 0; n < 100'000; ++n) m_port.send("Q\r");
  EXPECT_LT(time.elapsed(), 2000);
  EXPECT_EQ(m_hearer.losses, 0);
  std::size_t taken = 0;
  EXPECT_TRUE(eventually([&] {
    const std::size_t now = pty.read().size();
    taken += now;
    return taken > 0 && now == 0;
  }));
  EXPECT_LT(taken, 20'000U);
  m_port.send("V\r");
  EXPECT_TRUE(reaches(pty, "V\r"));
}

/// Writes to the line as fast as it takes characters, on a thread of its own.
class Flood {
 public:
  explicit Flood(const Pty& pty) : m_thread([this, fd = pty.fd()] { run(fd); }) {}
  ~Flood() {
    m_over = true;
    m_thread.join();
  }

 private:
  void run(int fd) const {
    const std::string chunk(4096, 'P');
    while (!m_over) {
      pollfd line{fd, POLLOUT, 0};
      if (poll(&line, 1, 10) > 0) [[maybe_unused]]
        const auto n = write(fd, chunk.data(), chunk.size());
    }
  }

  std::atomic<bool> m_over{false};
  std::thread m_thread;
};

TEST_F(SerialPort, AFloodLeavesTheEventLoopAlive) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  m_hearer.keep = false;
  int ticks = 0;
  {
    const Flood flood(pty);
    QTimer timer;
    timer.callOnTimeout([&] { ++ticks; });
    timer.start(10);
    EXPECT_TRUE(eventually([&] { return m_hearer.total > 1'000'000; }));
    const int before = ticks;
    EXPECT_TRUE(eventually([&] { return ticks >= before + 20; }, milliseconds(2000)));
    m_port.close();
  }
  EXPECT_LE(m_hearer.largest, 65536U);
  EXPECT_LT(test::turnsIn(milliseconds(200)), kStill);
}

TEST_F(SerialPort, AMeterIsFoundOverARealLine) {
  const Pty pty;
  CommPort comm(m_port);
  PortTable table;
  ASSERT_EQ(table.name("3=" + pty.path()), "");
  PumpedWait wait(timeOfDay);
  MeterSearch search(comm, table, wait, [](const std::string&) {});
  std::string commands;
  QTimer meter;
  meter.callOnTimeout([&] {
    const std::string now = pty.read();
    commands += now;
    if (now.find('V') != std::string::npos) pty.write("V,QV40,1.07,55\r");
  });
  meter.start(10);
  const SearchResult result = search.searchOne(3, false);
  EXPECT_EQ(result.end, SearchEnd::Found);
  EXPECT_EQ(result.identity.MeterField2, "1.07");
  EXPECT_TRUE(eventually([&] { return commands == "Q\rQ\rV\rU\rR\rO\r"; })) << commands;
  pty.write("P1A2B\r");
  EXPECT_TRUE(eventually([&] { return comm.waiting() == 6; }));
}

}  // namespace
}  // namespace qv3
