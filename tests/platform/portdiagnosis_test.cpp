#include "platform/portdiagnosis.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

struct Machine final : PortProbes {
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

struct Cause {
  const char* what;
  PortFault fault;
  Machine machine;
  const char* reason;
  const char* command;
};

Machine with(void (*change)(Machine&)) {
  Machine machine;
  change(machine);
  return machine;
}

class PortDiagnosis : public testing::TestWithParam<Cause> {};

TEST_P(PortDiagnosis, NamesTheCauseAndTheCommandThatHelps) {
  const Cause& row = GetParam();
  const PortResult told = diagnosed({row.fault, "as the system says"}, "/dev/ttyUSB0", row.machine);
  EXPECT_EQ(told.fault, row.fault) << row.what;
  EXPECT_EQ(told.reason, row.reason) << row.what;
  const std::string command = told.help.substr(told.help.find('\n') + 1);
  EXPECT_EQ(command, row.command) << row.what;
}

constexpr PortFault kDenied = PortFault::NoPermission;
constexpr PortFault kBusy = PortFault::Busy;

INSTANTIATE_TEST_SUITE_P(
    Causes, PortDiagnosis,
    testing::Values(
        Cause{"no device", PortFault::NotFound, {}, "as the system says", "    sudo dmesg | tail"},
        Cause{"not in the group",
              kDenied,
              {},
              "permission denied, you are not in the group dialout",
              "    sudo usermod -aG dialout anna"},
        Cause{"a user without a name", kDenied, with([](Machine& m) { m.user.clear(); }),
              "permission denied, you are not in the group dialout",
              "    sudo usermod -aG dialout $USER"},
        Cause{"not in this login", kDenied, with([](Machine& m) { m.account = true; }),
              "permission denied, you are in the group dialout but not in this login",
              "    sg dialout qv3-varnel"},
        Cause{"refused all the same", kDenied, with([](Machine& m) { m.account = m.login = true; }),
              "permission denied, although you are in the group dialout",
              "    sudo dmesg | grep -i denied"},
        Cause{"left the group after the login", kDenied, with([](Machine& m) { m.login = true; }),
              "permission denied, although you are in the group dialout",
              "    sudo dmesg | grep -i denied"},
        Cause{"no group may", kDenied, with([](Machine& m) { m.group = {}; }),
              "permission denied, only the administrator may use it",
              "    sudo chown anna /dev/ttyUSB0"},
        Cause{"an unseen program",
              kBusy,
              {},
              "another program is using it",
              "    sudo fuser -v /dev/ttyUSB0"},
        Cause{"an own program", kBusy, with([](Machine& m) {
                m.inUse = {{812, "screen", "", true}};
              }),
              "screen (process 812) is using it", "    kill 812"},
        Cause{"two, one of them somebody else's", kBusy, with([](Machine& m) {
                m.inUse = {{812, "screen", "", true}, {900, "cat", "", false}};
              }),
              "screen (process 812) and cat (process 900) are using it", "    sudo kill 812 900"},
        Cause{"a service", kBusy, with([](Machine& m) {
                m.inUse = {{431, "ModemManager", "ModemManager", false}};
              }),
              "ModemManager (process 431) is using it", "    sudo systemctl stop ModemManager"},
        Cause{"an error of another kind", PortFault::Other, {}, "as the system says", ""}),
    [](const testing::TestParamInfo<Cause>& row) {
      std::string name;
      for (const char* at = row.param.what; *at != '\0'; ++at) {
        if (isalpha(*at)) name += *at;
      }
      return name;
    });

/// A table that asks everybody to join a group for ports that are not there would drown the one
/// that is.
TEST(PortDiagnosisOfBuiltInPorts, ANodeWithoutAPortIsNoMatterOfPermission) {
  const Machine machine = with([](Machine& m) { m.empty = true; });
  const PortResult told = diagnosed({kDenied, "denied"}, "/dev/ttyS1", machine);
  EXPECT_EQ(told.fault, PortFault::InputOutput);
  EXPECT_EQ(told.help, "");
}

}  // namespace
}  // namespace qv3
