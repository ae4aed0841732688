#include "platform/portdiagnosis.h"

#include <utility>

#include "platform/errortexts.h"

namespace qv3 {
namespace {

PortResult withoutPermission(const std::string& path, const PortProbes& probes) {
  if (probes.isEmptyNode(path)) return {PortFault::InputOutput, errortext::kInputOutput, {}};
  const auto denied = [](std::string reason, std::string help) {
    return PortResult{PortFault::NoPermission, std::move(reason), std::move(help)};
  };
  const std::string name = probes.userName();
  const std::string user = name.empty() ? "$USER" : name;
  const DeviceGroup group = probes.groupOf(path);
  if (group.name.empty()) {
    return denied(errortext::kOnlyItsOwner, errortext::takeDevice(user, path));
  }
  if (probes.loginHas(group.id)) {
    return denied(errortext::refusedTo(group.name), errortext::kSeeWhoRefuses);
  }
  if (probes.accountHas(group.id)) {
    return denied(errortext::notInThisLogin(group.name), errortext::startInGroup(group.name));
  }
  return denied(errortext::notInGroup(group.name), errortext::joinGroup(user, group.name));
}

/// One command that ends them all: stops the service, or else the processes.
std::string commandAgainst(const std::vector<PortHolder>& holders) {
  std::string processes;
  bool allOurs = true;
  for (const PortHolder& holder : holders) {
    if (!holder.service.empty()) return "sudo systemctl stop " + holder.service;
    processes += ' ' + std::to_string(holder.process);
    allOurs = allOurs && holder.sameUser;
  }
  return (allOurs ? "kill" : "sudo kill") + processes;
}

PortResult inUse(const std::string& path, const PortProbes& probes) {
  const std::vector<PortHolder> holders = probes.holders(path);
  if (holders.empty()) return {PortFault::Busy, errortext::kBusy, errortext::seeWhoUses(path)};
  std::string names;
  for (const PortHolder& holder : holders) {
    if (!names.empty()) names += " and ";
    names += holder.program + " (process " + std::to_string(holder.process) + ')';
  }
  return {PortFault::Busy, errortext::usedBy(names, holders.size()),
          errortext::endIt(commandAgainst(holders))};
}

}  // namespace

PortResult diagnosed(PortResult failure, const std::string& path, const PortProbes& probes) {
  switch (failure.fault) {
    case PortFault::NotFound:
      failure.help = errortext::kSeeWhatIsPlugged;
      return failure;
    case PortFault::NoPermission:
      return withoutPermission(path, probes);
    case PortFault::Busy:
      return inUse(path, probes);
    default:
      return failure;
  }
}

}  // namespace qv3
