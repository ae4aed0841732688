#pragma once

#include <cstdint>
#include <memory>

#include "link/byteport.h"

class QSerialPort;

namespace qv3 {

/// The BytePort on a device of this machine, by its full path: a serial port, or a pseudo terminal
/// that stands in for one. To be used on the thread whose event loop delivers its characters.
class QtSerialPort final : public BytePort {
 public:
  QtSerialPort();
  ~QtSerialPort() override;
  QtSerialPort(const QtSerialPort&) = delete;
  QtSerialPort& operator=(const QtSerialPort&) = delete;

  [[nodiscard]] PortResult openConfigured(const std::string& path) override;
  void close() override;
  bool isOpen() const override;

  /// Never waits: the characters leave from the event loop, and what a line that takes nothing has
  /// not taken is limited.
  void send(std::string_view characters) override;

  void setListener(PortListener* listener) override { m_listener = listener; }

 private:
  PortResult tryToOpen(const std::string& path);
  PortResult whyNotOpened(const std::string& path) const;
  void receive();
  void failed();
  void lineLost(std::uint64_t connection);

  std::unique_ptr<QSerialPort> m_serial;
  PortListener* m_listener = nullptr;
  bool m_healthy = false;          ///< open, and no error so far
  std::uint64_t m_connection = 0;  ///< tells a late report of an earlier connection
};

}  // namespace qv3
