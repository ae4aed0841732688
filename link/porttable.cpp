#include "link/porttable.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <system_error>

namespace qv3 {
namespace {

struct Family {
  std::string_view prefix;
  int first;
  int count;
};

constexpr std::string_view kBuiltInPrefix = "/dev/ttyS";
constexpr Family kFamilies[] = {
    {"/dev/ttyUSB", 1, 8}, {"/dev/ttyACM", 9, 4}, {kBuiltInPrefix, 13, 4}};

constexpr bool isPort(int number) {
  return number >= 1 && number <= PortTable::kLast;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<int> portNumber(std::string_view text) {
  int number = 0;
  const char* const end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  if (parsed.ec != std::errc{} || parsed.ptr != end || !isPort(number)) return std::nullopt;
  return number;
}

std::string absolutePath(std::string_view path) {
  std::error_code error;
  const auto absolute = std::filesystem::absolute(path, error);
  return error ? std::string(path) : absolute.string();
}

std::string badEntry(std::string_view entry, std::string_view reason) {
  return "Port entry \"" + std::string(entry) + "\": " + std::string(reason);
}

/// The kernel keeps nodes of built-in ports that the machine does not have. They answer with an
/// input/output error, or that there is no device.
bool isEmptyNode(const std::string& path, PortFault fault) {
  return path.starts_with(kBuiltInPrefix) &&
         (fault == PortFault::InputOutput || fault == PortFault::Lost);
}

}  // namespace

PortTable::PortTable() {
  for (const Family& family : kFamilies) {
    for (int n = 0; n < family.count; ++n) {
      m_slots[static_cast<std::size_t>(family.first + n)].path =
          std::string(family.prefix) + std::to_string(n);
    }
  }
}

std::string PortTable::name(std::string_view entry) {
  const std::string_view text = trimmed(entry);
  const auto equals = text.find('=');
  if (equals == std::string_view::npos) return badEntry(text, "expected NUMBER=PATH");
  const auto number = portNumber(trimmed(text.substr(0, equals)));
  if (!number) return badEntry(text, "the number must be from 1 to 16");
  const std::string_view path = trimmed(text.substr(equals + 1));
  if (path.empty()) return badEntry(text, "the path is missing");

  Slot& named = m_slots[static_cast<std::size_t>(*number)];
  if (!named.named) named = {absolutePath(path), true, false, {}};
  return {};
}

std::vector<std::string> PortTable::nameAll(std::string_view entries, char separator) {
  std::vector<std::string> errors;
  while (!entries.empty()) {
    const auto end = entries.find(separator);
    const std::string_view entry = trimmed(entries.substr(0, end));
    entries.remove_prefix(end == std::string_view::npos ? entries.size() : end + 1);
    if (entry.empty()) continue;
    if (std::string error = name(entry); !error.empty()) errors.push_back(std::move(error));
  }
  return errors;
}

const std::string& PortTable::path(int port) const {
  return slot(port).path;
}

void PortTable::scanned(int port, const PortResult& result) {
  if (!isPort(port)) return;
  m_slots[static_cast<std::size_t>(port)].exists = result.ok();
  opened(port, result);
}

void PortTable::opened(int port, const PortResult& result) {
  if (!isPort(port)) return;
  m_slots[static_cast<std::size_t>(port)].result = result;
}

bool PortTable::failed(int port) const {
  const Slot& entry = slot(port);
  const PortFault fault = entry.result.fault;
  if (fault == PortFault::NotFound) return entry.named || port == m_expected;
  return fault != PortFault::None && !isEmptyNode(entry.path, fault);
}

std::vector<std::string> PortTable::reasons() const {
  std::vector<std::string> lines;
  for (int port = 1; port <= kLast; ++port) {
    if (!failed(port)) continue;
    const Slot& entry = slot(port);
    lines.push_back("Port Comm" + std::to_string(port) + ": (" + entry.path +
                    ") could not be opened: " + entry.result.reason);
  }
  return lines;
}

std::vector<std::string> PortTable::helps() const {
  std::vector<std::string> helps;
  for (int port = 1; port <= kLast; ++port) {
    const std::string& help = slot(port).result.help;
    if (!failed(port) || help.empty()) continue;
    if (std::find(helps.begin(), helps.end(), help) == helps.end()) helps.push_back(help);
  }
  return helps;
}

const PortTable::Slot& PortTable::slot(int port) const {
  return m_slots[isPort(port) ? static_cast<std::size_t>(port) : 0];
}

}  // namespace qv3
