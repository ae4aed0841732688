#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace qv3::test {

/// A reading that is not the one before it, and when it came, in milliseconds.
struct Change {
  std::int32_t reading = 0;
  double at = 0;
};

/// The changes that a meter sent, by what meter-sim logs, on the steady clock.
inline std::vector<Change> sentChanges(const std::string& log) {
  std::vector<Change> changes;
  std::ifstream file(log);
  double nanoseconds = 0;
  std::string frame;
  std::string last;
  while (file >> nanoseconds >> frame) {
    if (!last.empty() && frame != last) {
      changes.push_back({std::stoi(frame.substr(1), nullptr, 16), nanoseconds / 1e6});
    }
    last = frame;
  }
  return changes;
}

}  // namespace qv3::test
