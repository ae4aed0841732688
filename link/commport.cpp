#include "link/commport.h"

#include <algorithm>
#include <utility>

namespace qv3 {

CommPort::CommPort(BytePort& port) : m_port(port) {
  m_port.setListener(this);
}

CommPort::~CommPort() {
  m_port.setListener(nullptr);
}

PortResult CommPort::Com_Open(const std::string& path) {
  if (m_port.isOpen()) return {};
  m_received.clear();
  return m_port.openConfigured(path);
}

void CommPort::Com_Close() {
  m_port.close();
  m_received.clear();
}

void CommPort::sendCommand(std::string_view command) {
  if (!m_port.isOpen()) return;
  m_port.send(std::string(command) + '\r');
}

void CommPort::charactersArrived(std::string_view characters) {
  m_received.append(characters.substr(0, std::min(characters.size(), kLimit - m_received.size())));
  if (eventDue() && m_observer.eventDue) m_observer.eventDue();
}

void CommPort::portLost() {
  if (m_observer.lost) m_observer.lost();
}

}  // namespace qv3
