#pragma once

#include <fstream>
#include <string>
#include <string_view>

#include "tools/metersim/core/nanos.h"

namespace qv3::metersim {

/// When each frame was sent, a line a frame, complete at once so that others can follow it.
class FrameLog {
 public:
  /// The error's text, or nothing.
  std::string open(const std::string& path);

  /// Nothing happens unless it is open. False once the file takes no more.
  bool write(Nanos sent, std::string_view frame);

 private:
  std::ofstream m_file;
};

}  // namespace qv3::metersim
