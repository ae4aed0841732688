#include "platform/portnode.h"

#include <fcntl.h>
#include <grp.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/errortexts.h"

namespace qv3 {
namespace {

/// The group that has the right to use the node; empty if none has. To advise anybody to join the
/// administrator's own group is no help.
std::string groupOf(const std::string& path) {
  struct stat node {};
  constexpr mode_t kGroupUse = S_IRGRP | S_IWGRP;
  if (stat(path.c_str(), &node) != 0 || node.st_gid == 0) return {};
  if ((node.st_mode & kGroupUse) != kGroupUse) return {};
  group entry{};
  group* found = nullptr;
  std::array<char, 16384> names{};
  getgrgid_r(node.st_gid, &entry, names.data(), names.size(), &found);
  return found ? found->gr_name : std::to_string(node.st_gid);
}

}  // namespace

PortResult checkPortNode(const std::string& path) {
  struct stat node {};
  if (stat(path.c_str(), &node) != 0) return portFailure(path, errno);
  if (S_ISDIR(node.st_mode)) return {PortFault::Other, errortext::kFolder};
  if (!S_ISCHR(node.st_mode)) return {PortFault::Other, errortext::kNotSerial};
  return {};
}

PortResult portFailure(const std::string& path, int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {PortFault::NotFound, errortext::kNoDevice};
    case EACCES:
    case EPERM:
      return {PortFault::NoPermission, errortext::permissionDenied(groupOf(path))};
    case EBUSY:
      return {PortFault::Busy, errortext::kBusy};
    case EIO:
      return {PortFault::InputOutput, errortext::kInputOutput};
    case ENXIO:
    case ENODEV:
      return {PortFault::Lost, errortext::kGone};
    case ENOTTY:
    case EINVAL:
      return {PortFault::Other, errortext::kNotSerial};
    default:
      return {PortFault::Other, errortext::system(error)};
  }
}

PortResult tryPortNode(const std::string& path) {
  const int device = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (device < 0) return portFailure(path, errno);
  termios settings{};
  const int error = tcgetattr(device, &settings) == 0 ? 0 : errno;
  close(device);
  return error == 0 ? PortResult{} : portFailure(path, error);
}

}  // namespace qv3
