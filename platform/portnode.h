#pragma once

#include <string>

#include "link/byteport.h"

namespace qv3 {

/// Whether there is a device at `path` that a port may be. Does not open it.
PortResult checkPortNode(const std::string& path);

/// What an `errno` of opening or configuring a device means to the user.
PortResult portFailure(int error);

/// Opens the device at `path` for a moment to learn what keeps it from being a port; nothing may.
PortResult tryPortNode(const std::string& path);

}  // namespace qv3
