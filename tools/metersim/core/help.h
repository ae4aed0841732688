#pragma once

#include <string>

namespace qv3::metersim {

/// What --help prints.
std::string helpText();

}  // namespace qv3::metersim
