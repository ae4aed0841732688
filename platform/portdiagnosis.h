#pragma once

#include <string>
#include <vector>

#include "link/byteport.h"

namespace qv3 {

/// The group that may use a device; none (no name) where only its owner may. To advise anybody to
/// join the administrator's own group is no help, so that one counts as none.
struct DeviceGroup {
  unsigned id = 0;
  std::string name;
};

/// A program that uses a device.
struct PortHolder {
  int process = 0;
  std::string program;
  std::string service;   ///< the system service it belongs to; empty if to none
  bool sameUser = true;  ///< it runs for who runs this program
};

/// What the machine tells of a device and of who wants to use it.
class PortProbes {
 public:
  virtual ~PortProbes() = default;

  /// Who this program runs for; empty if the system has no name for it.
  virtual std::string userName() const = 0;
  virtual DeviceGroup groupOf(const std::string& path) const = 0;
  /// Groups count from the login in which they are: what the user database says now may be newer
  /// than what this process was started with.
  virtual bool loginHas(unsigned group) const = 0;
  virtual bool accountHas(unsigned group) const = 0;
  /// Other programs, as far as they can be seen.
  virtual std::vector<PortHolder> holders(const std::string& path) const = 0;
  /// The system keeps the node though the machine has no such port.
  virtual bool isEmptyNode(const std::string& path) const = 0;
};

/// A failure to open the device at `path`, with its cause and what helps against it.
PortResult diagnosed(PortResult failure, const std::string& path, const PortProbes& probes);

}  // namespace qv3
