#pragma once

#include <cstddef>
#include <string>
#include <system_error>

namespace qv3::errortext {

// Ports. The reasons stand behind "Port Comm3: (/dev/ttyUSB2) could not be opened: ".
inline constexpr char kNoDevice[] = "there is no such device";
inline constexpr char kFolder[] = "it is a folder";
inline constexpr char kNotSerial[] = "it is not a serial port";
inline constexpr char kBusy[] = "another program is using it";
inline constexpr char kInputOutput[] = "input/output error";
inline constexpr char kGone[] = "the device is gone";

inline constexpr char kOnlyItsOwner[] = "permission denied, only the administrator may use it";
inline std::string notInGroup(const std::string& group) {
  return "permission denied, you are not in the group " + group;
}
inline std::string notInThisLogin(const std::string& group) {
  return "permission denied, you are in the group " + group + " but not in this login";
}
inline std::string refusedTo(const std::string& group) {
  return "permission denied, although you are in the group " + group;
}
inline std::string usedBy(const std::string& programs, std::size_t count) {
  return programs + (count == 1 ? " is using it" : " are using it");
}

// What helps against it: a sentence and the command.
inline constexpr char kSeeWhatIsPlugged[] =
    "If the meter is plugged in, see what the system makes of it:\n    sudo dmesg | tail";
inline constexpr char kSeeWhoRefuses[] =
    "A container or a security policy keeps it back. See which:\n    sudo dmesg | grep -i denied";
inline std::string joinGroup(const std::string& user, const std::string& group) {
  return "Join the group, then log out and in again:\n    sudo usermod -aG " + group + ' ' + user;
}
inline std::string startInGroup(const std::string& group) {
  return "Log out and in again, or start the program with the group:\n    sg " + group +
         " qv3-varnel";
}
inline std::string takeDevice(const std::string& user, const std::string& path) {
  return "Until it is plugged in again, it can be made yours:\n    sudo chown " + user + ' ' + path;
}
inline std::string seeWhoUses(const std::string& path) {
  return "See which program it is:\n    sudo fuser -v " + path;
}
inline std::string endIt(const std::string& command) {
  return "Close that program, or end it:\n    " + command;
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

inline constexpr char kRemoved[] = "its file was removed";

inline std::string endsEarly(const std::string& path) {
  return "the file \"" + path + "\" ends too early";
}

/// What the system says of an `errno`.
inline std::string system(int error) {
  return std::generic_category().message(error);
}

}  // namespace qv3::errortext
