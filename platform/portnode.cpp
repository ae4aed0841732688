#include "platform/portnode.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>

#include "platform/errortexts.h"

namespace qv3 {

PortResult checkPortNode(const std::string& path) {
  struct stat node {};
  if (stat(path.c_str(), &node) != 0) return portFailure(errno);
  if (S_ISDIR(node.st_mode)) return {PortFault::Other, errortext::kFolder};
  if (!S_ISCHR(node.st_mode)) return {PortFault::Other, errortext::kNotSerial};
  return {};
}

PortResult portFailure(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return {PortFault::NotFound, errortext::kNoDevice};
    case EACCES:
    case EPERM:
      return {PortFault::NoPermission, errortext::system(EACCES)};
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
  if (device < 0) return portFailure(errno);
  termios settings{};
  const int error = tcgetattr(device, &settings) == 0 ? 0 : errno;
  close(device);
  return error == 0 ? PortResult{} : portFailure(error);
}

}  // namespace qv3
