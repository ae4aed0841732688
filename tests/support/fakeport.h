#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "link/byteport.h"

namespace qv3::test {

/// BytePort in memory: only what `nodes` holds can be opened. Everything that is done to it is
/// written to the log it was given, as "open PATH", "close" and "send COMMAND".
class FakePort : public BytePort {
 public:
  explicit FakePort(std::vector<std::string>& log) : m_log(log) {}

  PortResult openConfigured(const std::string& path) override {
    close();
    const auto node = nodes.find(path);
    if (node == nodes.end()) return {PortFault::NotFound, "there is no such device"};
    if (!node->second.ok()) return node->second;
    m_log.push_back("open " + path);
    m_path = path;
    return {};
  }

  void close() override {
    if (!m_path.empty()) m_log.push_back("close");
    m_path.clear();
  }

  bool isOpen() const override { return !m_path.empty(); }

  void send(std::string_view characters) override {
    m_log.push_back("send " + std::string(characters.substr(0, characters.find('\r'))));
    if (onSend) onSend(characters);
  }

  void setListener(PortListener* listener) override { m_listener = listener; }

  /// What arrives while the port is closed is lost, as on a line.
  void feed(std::string_view characters) {
    if (isOpen() && m_listener) m_listener->charactersArrived(characters);
  }

  void lose() {
    if (!isOpen()) return;
    m_path.clear();
    m_log.push_back("lost");
    if (m_listener) m_listener->portLost();
  }

  const std::string& path() const { return m_path; }

  std::map<std::string, PortResult> nodes;  ///< what opening each of them gives
  std::function<void(std::string_view)> onSend;

 private:
  std::vector<std::string>& m_log;
  PortListener* m_listener = nullptr;
  std::string m_path;
};

}  // namespace qv3::test
