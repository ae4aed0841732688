#include "platform/portdiagnosis.h"

#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <QTemporaryDir>

#include "platform/errortexts.h"
#include "platform/qtserialport.h"
#include "platform/systemprobes.h"
#include "tests/platform/pty.h"
#include "tests/platform/unprivileged.h"

namespace qv3 {
namespace {

using test::Pty;
using test::reasonAgainst;
using testing::HasSubstr;

struct Machine final : PortProbes {
  Machine() = default;
  Machine(bool inLogin, bool inAccount) : login(inLogin), account(inAccount) {}
  explicit Machine(std::vector<PortHolder> holders) : inUse(std::move(holders)) {}

  std::string userName() const override { return user; }
  DeviceGroup groupOf(const std::string&) const override { return group; }
  bool loginHas(unsigned id) const override { return login && id == group.id; }
  bool accountHas(unsigned id) const override { return account && id == group.id; }
  std::vector<PortHolder> holders(const std::string&) const override { return inUse; }
  bool isEmptyNode(const std::string&) const override { return empty; }

  std::string user = "anna";
  DeviceGroup group{20, "dialout"};
  bool login = false;
  bool account = false;
  std::vector<PortHolder> inUse;
  bool empty = false;
};

TEST(PortDiagnosis, NamesTheCauseAndTheCommandThatHelps) {
  constexpr PortFault kDenied = PortFault::NoPermission;
  constexpr PortFault kBusy = PortFault::Busy;
  Machine nameless;
  nameless.user.clear();
  Machine groupless;
  groupless.group = {};
  const PortHolder screen{812, "screen", "", true};
  const PortHolder cat{900, "cat", "", false};
  const PortHolder modems{431, "ModemManager", "ModemManager", false};
  const struct {
    const char* what;
    PortFault fault;
    Machine machine;
    const char* reason;
    const char* command;
  } rows[] = {
      {"no device", PortFault::NotFound, Machine(), "as the system says", "sudo dmesg | tail"},
      {"not in the group", kDenied, Machine(),
       "permission denied, you are not in the group dialout", "sudo usermod -aG dialout anna"},
      {"a user without a name", kDenied, nameless,
       "permission denied, you are not in the group dialout", "sudo usermod -aG dialout $USER"},
      {"not in this login", kDenied, Machine(false, true),
       "permission denied, you are in the group dialout but not in this login",
       "sg dialout qv3-varnel"},
      {"refused all the same", kDenied, Machine(true, true),
       "permission denied, although you are in the group dialout", "sudo dmesg | grep -i denied"},
      {"left the group after the login", kDenied, Machine(true, false),
       "permission denied, although you are in the group dialout", "sudo dmesg | grep -i denied"},
      {"no group may", kDenied, groupless, "permission denied, only the administrator may use it",
       "sudo chown anna /dev/ttyUSB0"},
      {"an unseen program", kBusy, Machine(), "another program is using it",
       "sudo fuser -v /dev/ttyUSB0"},
      {"an own program", kBusy, Machine({screen}), "screen (process 812) is using it", "kill 812"},
      {"two, one of them somebody else's", kBusy, Machine({screen, cat}),
       "screen (process 812) and cat (process 900) are using it", "sudo kill 812 900"},
      {"a service", kBusy, Machine({modems}), "ModemManager (process 431) is using it",
       "sudo systemctl stop ModemManager"},
      {"an error of another kind", PortFault::Other, Machine(), "as the system says", ""},
  };
  for (const auto& row : rows) {
    const PortResult told =
        diagnosed({row.fault, "as the system says"}, "/dev/ttyUSB0", row.machine);
    EXPECT_EQ(told.fault, row.fault) << row.what;
    EXPECT_EQ(told.reason, row.reason) << row.what;
    const std::string command = told.help.substr(told.help.find('\n') + 1);
    EXPECT_EQ(command, *row.command == '\0' ? "" : std::string("    ") + row.command) << row.what;
  }
}

/// A table that asks everybody to join a group for ports that are not there would drown the one
/// that is.
TEST(PortDiagnosis, ANodeWithoutAPortIsNoMatterOfPermission) {
  Machine machine;
  machine.empty = true;
  const PortResult told = diagnosed({PortFault::NoPermission, "denied"}, "/dev/ttyS1", machine);
  EXPECT_EQ(told.fault, PortFault::InputOutput);
  EXPECT_EQ(told.help, "");
}

class RefusedPort : public testing::Test, public PortListener {
 protected:
  RefusedPort() { m_port.setListener(this); }
  void charactersArrived(std::string_view) override {}
  void portLost() override { ADD_FAILURE() << "a refusal is no loss"; }

  QtSerialPort m_port;
};

TEST_F(RefusedPort, WhatIsNoUsableDeviceSaysWhy) {
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
    ASSERT_EQ(reasonAgainst(m_port, before), "");
    const PortResult result = m_port.openConfigured(row.path);
    EXPECT_EQ(result.fault, row.fault) << row.path;
    EXPECT_EQ(result.reason, row.reason) << row.path;
    EXPECT_FALSE(m_port.isOpen()) << row.path;
    QCoreApplication::processEvents();
  }
  EXPECT_TRUE(other.isOpen());
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

TEST_F(RefusedPort, MissingPermissionNamesTheGroupToJoin) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(m_port, pty), "");
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
    EXPECT_EQ(result.fault, PortFault::NoPermission) << row.mode;
    EXPECT_EQ(result.reason, row.reason) << row.mode;
    EXPECT_FALSE(m_port.isOpen()) << row.mode;
  }
}

/// A process beside this one that has done something to the device.
class Other {
 public:
  Other(const Pty& pty, bool (*with)(const char* path)) {
    int ready[2];
    if (pipe(ready) != 0) throw std::runtime_error("no pipe");
    m_process = fork();
    if (m_process == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      if (with(pty.path().c_str())) [[maybe_unused]]
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

bool openDevice(const char* path) {
  return open(path, O_RDWR | O_NOCTTY) >= 0;
}

bool lockDevice(const char* path) {
  return flock(open(path, O_RDWR | O_NOCTTY), LOCK_EX) == 0;
}

bool lockDeviceByAChild(const char* path) {
  const int device = open(path, O_RDWR | O_NOCTTY);
  const pid_t child = fork();
  if (child == 0) _exit(flock(device, LOCK_EX));
  int status = -1;
  return waitpid(child, &status, 0) == child && status == 0;
}

bool openPort(const char* path) {
  return (new QtSerialPort)->openConfigured(path).ok();
}

TEST_F(RefusedPort, AnotherProgramThatLockedOrOpenedTheDeviceIsNamed) {
  const struct {
    const char* what;
    bool (*with)(const char* path);
    PortFault fault;
  } rows[] = {{"opened", openDevice, PortFault::None},
              {"locked", lockDevice, PortFault::Busy},
              {"locked by a process that has ended", lockDeviceByAChild, PortFault::Busy},
              {"this program once more", openPort, PortFault::Busy}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const Pty pty;
    ASSERT_EQ(reasonAgainst(m_port, pty), "");
    m_port.close();
    const Other other(pty, row.with);
    ASSERT_TRUE(other.ready());
    EXPECT_EQ(m_port.openConfigured(pty.path()).fault, row.fault);
    m_port.close();
    const PortResult busy = diagnosed({PortFault::Busy, ""}, pty.path(), SystemProbes());
    EXPECT_THAT(busy.reason, HasSubstr(other.told()));
    EXPECT_THAT(busy.help, HasSubstr("kill"));
  }
}

}  // namespace
}  // namespace qv3
