#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "link/byteport.h"

namespace qv3 {

/// The meter's port as the measurement loop sees it: a receive buffer, and a receive event that is
/// due once as many characters wait as the receive threshold says.
class CommPort final : public PortListener {
 public:
  /// Hears that an event may be due, and that the line went. Called from the event loop.
  struct Observer {
    std::function<void()> eventDue;
    std::function<void()> lost;
  };

  explicit CommPort(BytePort& port);
  ~CommPort() override;
  CommPort(const CommPort&) = delete;
  CommPort& operator=(const CommPort&) = delete;

  void setObserver(Observer observer) { m_observer = std::move(observer); }

  /// Opens the node at `path` with an empty receive buffer; does nothing if the port is open.
  [[nodiscard]] PortResult Com_Open(const std::string& path);
  void Com_Close();
  bool isOpen() const { return m_port.isOpen(); }

  /// Sends a meter command ("Q", "SL", ...) and a carriage return; nothing on a closed port.
  void sendCommand(std::string_view command);

  /// 0 means no receive events. An event may be due at once after a threshold is restored.
  void setReceiveThreshold(std::size_t threshold) { m_threshold = threshold; }
  std::size_t receiveThreshold() const { return m_threshold; }
  bool eventDue() const { return m_threshold > 0 && m_received.size() >= m_threshold; }

  std::size_t waiting() const { return m_received.size(); }
  std::string_view peek() const { return m_received; }
  void clearReceived() { m_received.clear(); }

  void charactersArrived(std::string_view characters) override;
  void portLost() override;

 private:
  /// A flooding line while nobody reads (a probe waits half a second) must not fill the memory; an
  /// event empties a buffer of more than 50 characters anyway.
  static constexpr std::size_t kLimit = 4096;

  BytePort& m_port;
  Observer m_observer;
  std::string m_received;
  std::size_t m_threshold = 0;
};

}  // namespace qv3
