#pragma once

#include <string>
#include <system_error>

namespace qv3::errortext {

// Ports. They stand behind "Port Comm3: (/dev/ttyUSB2) could not be opened: ".
inline constexpr char kNoDevice[] = "there is no such device";
inline constexpr char kFolder[] = "it is a folder";
inline constexpr char kNotSerial[] = "it is not a serial port";
inline constexpr char kBusy[] = "another program is using it";
inline constexpr char kInputOutput[] = "input/output error";
inline constexpr char kGone[] = "the device is gone";

/// `group` is the one that may use the device, empty if none may.
inline std::string permissionDenied(const std::string& group) {
  if (group.empty()) return "permission denied";
  return "permission denied; join the group " + group;
}

// Folders.
inline std::string folderNotMade(const std::string& folder, const std::string& reason) {
  return "The folder \"" + folder + "\" could not be created: " + reason;
}
inline std::string folderNotWritable(const std::string& folder) {
  return "The folder \"" + folder + "\" cannot be written to.";
}

// Files.
inline constexpr char kNoTrash[] = "there is no trash for it";

inline std::string endsEarly(const std::string& path) {
  return "the file \"" + path + "\" ends too early";
}

/// What the system says of an `errno`.
inline std::string system(int error) {
  return std::generic_category().message(error);
}

}  // namespace qv3::errortext
