#include "platform/systemprobes.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>
#include <system_error>

namespace qv3 {
namespace {

namespace fs = std::filesystem;

using Processes = std::set<int>;

struct Account {
  std::string name;
  gid_t group = 0;
};

std::optional<Account> account() {
  passwd entry{};
  passwd* found = nullptr;
  std::array<char, 16384> texts{};
  getpwuid_r(geteuid(), &entry, texts.data(), texts.size(), &found);
  if (found == nullptr) return std::nullopt;
  return Account{found->pw_name, found->pw_gid};
}

std::string firstLine(const fs::path& path) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  return line;
}

/// Of a text that begins with a number, perhaps after blanks; 0 if it does not.
int leadingNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

bool isRunning(int process) {
  std::error_code error;
  return process > 0 && fs::exists("/proc/" + std::to_string(process), error);
}

/// The lock files that programs agree on, this one's serial class among them: LCK..ttyUSB0 with the
/// process in its first line.
void addLockFiles(const std::string& path, Processes& found) {
  constexpr std::string_view kDevices = "/dev/";
  if (!path.starts_with(kDevices)) return;
  std::string name = path.substr(kDevices.size());
  std::replace(name.begin(), name.end(), '/', '_');
  for (const char* folder : {"/run/lock", "/var/lock", "/tmp", "/var/tmp"}) {
    const int process = leadingNumber(firstLine(fs::path(folder) / ("LCK.." + name)));
    if (isRunning(process)) found.insert(process);
  }
}

/// Locks on the node itself: "1: FLOCK  ADVISORY  WRITE 812 00:06:443 0 EOF". One taken by a
/// process that has ended is held by those that it left its file to.
void addLocks(const struct stat& node, Processes& found) {
  char key[64];
  std::snprintf(key, sizeof key, "%02x:%02x:%llu", major(node.st_dev), minor(node.st_dev),
                static_cast<unsigned long long>(node.st_ino));
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number, kind, how, what, place;
    int process = 0;
    words >> number >> kind >> how >> what >> process >> place;
    if (place == key && isRunning(process)) found.insert(process);
  }
}

bool hasOpen(const fs::path& processFolder, const struct stat& node) {
  std::error_code error;
  for (const auto& file : fs::directory_iterator(processFolder / "fd", error)) {
    struct stat open {};
    if (stat(file.path().c_str(), &open) == 0 && S_ISCHR(open.st_mode) &&
        open.st_rdev == node.st_rdev && open.st_dev == node.st_dev) {
      return true;
    }
  }
  return false;
}

void addOpenFiles(const struct stat& node, Processes& found) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator("/proc", error)) {
    const int process = leadingNumber(entry.path().filename().string());
    if (process > 0 && hasOpen(entry.path(), node)) found.insert(process);
  }
}

/// "0::/system.slice/ModemManager.service" belongs to the service ModemManager.
std::string serviceOf(const fs::path& processFolder) {
  constexpr std::string_view kServices = "/system.slice/";
  constexpr std::string_view kService = ".service";
  const std::string group = firstLine(processFolder / "cgroup");
  const auto begin = group.find(kServices);
  if (begin == std::string::npos || !group.ends_with(kService)) return {};
  const auto name = group.rfind('/') + 1;
  return group.substr(name, group.size() - kService.size() - name);
}

PortHolder holder(int process) {
  const fs::path folder = "/proc/" + std::to_string(process);
  struct stat owner {};
  const bool known = stat(folder.c_str(), &owner) == 0;
  return {process, firstLine(folder / "comm"), serviceOf(folder),
          known && owner.st_uid == geteuid()};
}

}  // namespace

std::string SystemProbes::userName() const {
  const auto user = account();
  return user ? user->name : std::string();
}

DeviceGroup SystemProbes::groupOf(const std::string& path) const {
  struct stat node {};
  constexpr mode_t kGroupUse = S_IRGRP | S_IWGRP;
  if (stat(path.c_str(), &node) != 0 || node.st_gid == 0) return {};
  if ((node.st_mode & kGroupUse) != kGroupUse) return {};
  group entry{};
  group* found = nullptr;
  std::array<char, 16384> names{};
  getgrgid_r(node.st_gid, &entry, names.data(), names.size(), &found);
  return {node.st_gid, found ? found->gr_name : std::to_string(node.st_gid)};
}

bool SystemProbes::loginHas(unsigned group) const {
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
  const int count = getgroups(static_cast<int>(groups.size()), groups.data());
  groups.resize(static_cast<std::size_t>(std::max(count, 0)));
  return getegid() == group || std::find(groups.begin(), groups.end(), group) != groups.end();
}

bool SystemProbes::accountHas(unsigned group) const {
  const auto user = account();
  if (!user) return false;
  int count = 0;
  getgrouplist(user->name.c_str(), user->group, nullptr, &count);
  std::vector<gid_t> groups(static_cast<std::size_t>(std::max(count, 0)));
  if (getgrouplist(user->name.c_str(), user->group, groups.data(), &count) < 0) return false;
  return std::find(groups.begin(), groups.end(), group) != groups.end();
}

std::vector<PortHolder> SystemProbes::holders(const std::string& path) const {
  struct stat node {};
  if (stat(path.c_str(), &node) != 0) return {};
  Processes found;
  std::error_code unresolved;
  addLockFiles(path, found);
  addLockFiles(fs::canonical(path, unresolved).string(), found);
  addLocks(node, found);
  if (found.empty()) addOpenFiles(node, found);
  found.erase(getpid());
  std::vector<PortHolder> holders;
  for (const int process : found) holders.push_back(holder(process));
  return holders;
}

/// A built-in port of the kind 0 is a place on the board where nothing is.
bool SystemProbes::isEmptyNode(const std::string& path) const {
  constexpr std::string_view kBuiltIn = "/dev/ttyS";
  if (!path.starts_with(kBuiltIn)) return false;
  return firstLine("/sys/class/tty" + path.substr(path.rfind('/')) + "/type") == "0";
}

}  // namespace qv3
