#pragma once

#include <string>
#include <string_view>

namespace qv3 {

/// Why a port could not be opened, or went.
enum class PortFault { None, NotFound, NoPermission, Busy, InputOutput, Lost, Other };

/// The answer of an attempt to open a port. `reason` is a text for the user ("permission denied,
/// you are not in the group dialout"), empty on success. `help`, where there is one, says what to
/// do about it, with the command on a line of its own.
struct PortResult {
  PortFault fault = PortFault::None;
  std::string reason;
  std::string help{};

  bool ok() const { return fault == PortFault::None; }
};

/// Hears of what a port receives. Called from the event loop, never from inside a call to the port.
class PortListener {
 public:
  virtual ~PortListener() = default;

  /// Everything that waited, in the order received; one call may bring many frames.
  virtual void charactersArrived(std::string_view characters) = 0;

  /// The line went (unplugged, hung up). Said once a connection; the port is closed already.
  virtual void portLost() = 0;
};

/// A serial line at 9600 baud, 8 data bits, no parity, 1 stop bit, no handshaking, DTR and RTS on.
class BytePort {
 public:
  virtual ~BytePort() = default;

  /// Opens the node at `path` exclusively and configures it, as one step: on failure the port is
  /// closed. A port that is open is closed first. Only nodes that exist are opened.
  [[nodiscard]] virtual PortResult openConfigured(const std::string& path) = 0;

  /// Characters not delivered yet are dropped. Closing a closed port does nothing.
  virtual void close() = 0;
  virtual bool isOpen() const = 0;

  /// Hands the characters to the line; a line that went says so through the listener.
  virtual void send(std::string_view characters) = 0;

  /// The listener must outlive the port or be taken away with nullptr.
  virtual void setListener(PortListener* listener) = 0;
};

/// A port that nothing is behind: characters are handed to whoever listens in some other way.
class NoPort final : public BytePort {
 public:
  PortResult openConfigured(const std::string&) override { return {}; }
  void close() override {}
  bool isOpen() const override { return false; }
  void send(std::string_view) override {}
  void setListener(PortListener*) override {}
};

}  // namespace qv3
