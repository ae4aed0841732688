#pragma once

#include "platform/portdiagnosis.h"

namespace qv3 {

/// What this machine tells: user database, /proc, /sys, and the lock files of serial ports.
class SystemProbes final : public PortProbes {
 public:
  std::string userName() const override;
  DeviceGroup groupOf(const std::string& path) const override;
  bool loginHas(unsigned group) const override;
  bool accountHas(unsigned group) const override;
  /// Who locked the device; else who has it open. Other users' open files cannot be seen, but
  /// their locks can.
  std::vector<PortHolder> holders(const std::string& path) const override;
  bool isEmptyNode(const std::string& path) const override;
};

}  // namespace qv3
