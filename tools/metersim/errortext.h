#pragma once

#include <cerrno>
#include <string>
#include <system_error>

namespace qv3::metersim {

/// "what: reason", the reason being errno's.
inline std::string errnoText(const std::string& what) {
  return what + ": " + std::generic_category().message(errno);
}

}  // namespace qv3::metersim
