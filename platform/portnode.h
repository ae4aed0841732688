#pragma once

#include <string>

#include "link/byteport.h"

namespace qv3 {

/// Whether there is a device at `path` that a port may be. Does not open it.
PortResult checkPortNode(const std::string& path);

/// What an `errno` of opening or configuring the device at `path` means to the user.
PortResult portFailure(const std::string& path, int error);

/// Why the device at `path` could not be opened a moment ago. Opens it again for an answer.
PortResult explainPortFailure(const std::string& path);

}  // namespace qv3
