#include "platform/qtserialport.h"

#include <sys/file.h>

#include <QSerialPort>
#include <cerrno>
#include <utility>

#include "platform/portdiagnosis.h"
#include "platform/portnode.h"
#include "platform/systemprobes.h"

namespace qv3 {
namespace {

constexpr qint64 kUnsentLimit = 1024;  // commands are three characters

/// The serial class also reports what is no fault: success, a close of a closed port, lines that a
/// pseudo terminal does not have.
bool meansLost(QSerialPort::SerialPortError error) {
  return error == QSerialPort::ReadError || error == QSerialPort::WriteError ||
         error == QSerialPort::ResourceError;
}

void configure(QSerialPort& serial) {
  serial.setBaudRate(QSerialPort::Baud9600);
  serial.setDataBits(QSerialPort::Data8);
  serial.setParity(QSerialPort::NoParity);
  serial.setStopBits(QSerialPort::OneStop);
  serial.setFlowControl(QSerialPort::NoFlowControl);
}

}  // namespace

QtSerialPort::QtSerialPort() : m_serial(std::make_unique<QSerialPort>()) {
  configure(*m_serial);
  QObject::connect(m_serial.get(), &QSerialPort::readyRead, m_serial.get(), [this] { receive(); });
  QObject::connect(m_serial.get(), &QSerialPort::errorOccurred, m_serial.get(),
                   [this](QSerialPort::SerialPortError error) {
                     if (meansLost(error)) failed();
                   });
}

QtSerialPort::~QtSerialPort() {
  close();
}

PortResult QtSerialPort::openConfigured(const std::string& path) {
  close();
  PortResult result = tryToOpen(path);
  if (!result.ok()) return diagnosed(std::move(result), path, SystemProbes());
  m_healthy = true;
  m_serial->clear();  // what a pseudo terminal kept for whoever opens it next
  m_serial->setDataTerminalReady(true);
  m_serial->setRequestToSend(true);
  return {};
}

PortResult QtSerialPort::tryToOpen(const std::string& path) {
  if (PortResult node = checkPortNode(path); !node.ok()) return node;
  m_serial->setPortName(QString::fromStdString(path));
  if (!m_serial->open(QIODevice::ReadWrite)) return whyNotOpened(path);
  // The serial class locks by a file of its own; terminal programs lock the device.
  if (flock(m_serial->handle(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    m_serial->close();
    return portFailure(EBUSY);
  }
  return {};
}

/// The serial class tells neither a missing right from another program's lock nor one failure of
/// the system from the next, so the device is asked itself.
PortResult QtSerialPort::whyNotOpened(const std::string& path) const {
  const QSerialPort::SerialPortError error = m_serial->error();
  if (PortResult node = tryPortNode(path); !node.ok()) return node;
  if (error == QSerialPort::PermissionError) return portFailure(EBUSY);
  return {PortFault::Other, m_serial->errorString().toStdString()};
}

void QtSerialPort::close() {
  m_healthy = false;
  ++m_connection;
  if (!m_serial->isOpen()) return;
  // The system would wait, up to half a minute, for characters that a stuck line has not taken.
  m_serial->clear();
  m_serial->close();
}

bool QtSerialPort::isOpen() const {
  return m_serial->isOpen();
}

void QtSerialPort::send(std::string_view characters) {
  if (!m_healthy) return;
  const auto size = static_cast<qint64>(characters.size());
  if (m_serial->bytesToWrite() + size > kUnsentLimit) return;
  m_serial->write(characters.data(), size);
}

void QtSerialPort::receive() {
  const QByteArray characters = m_serial->readAll();
  if (characters.isEmpty() || !m_listener) return;
  m_listener->charactersArrived({characters.constData(), static_cast<size_t>(characters.size())});
}

/// After the other end went, the serial class repeats its error without end (190,000 times in
/// 200 ms were measured), so the first one closes the port; not at once, because the class is in
/// the midst of reading.
void QtSerialPort::failed() {
  if (!m_healthy) return;
  m_healthy = false;
  QMetaObject::invokeMethod(
      m_serial.get(), [this, connection = m_connection] { lineLost(connection); },
      Qt::QueuedConnection);
}

void QtSerialPort::lineLost(std::uint64_t connection) {
  if (connection != m_connection) return;
  close();
  if (m_listener) m_listener->portLost();
}

}  // namespace qv3
