#pragma once

#include <string>
#include <vector>

#include "tools/metersim/core/command.h"
#include "tools/metersim/core/linesplitter.h"
#include "tools/metersim/fd.h"

namespace qv3::metersim {

/// The named pipe that commands come through. Makes it if it is missing, and then removes it.
class ControlPipe {
 public:
  ControlPipe() = default;
  ControlPipe(const ControlPipe&) = delete;
  ControlPipe& operator=(const ControlPipe&) = delete;
  ~ControlPipe();

  /// The error's text, or nothing.
  std::string open(const std::string& path);

  /// -1 unless open.
  int fd() const { return m_reader.get(); }

  /// The lines that are complete now.
  std::vector<std::string> read();

 private:
  std::string m_made;  ///< the path, if we made it
  Fd m_reader;
  Fd m_writer;  ///< keeps the pipe from ending when the last writer goes
  LineSplitter m_lines{'\n', kLongestCommand};
};

}  // namespace qv3::metersim
