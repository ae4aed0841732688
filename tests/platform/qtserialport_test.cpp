#include "platform/qtserialport.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <thread>
#include <utility>

#include "tests/platform/pty.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;
using test::eventually;
using test::Pty;

constexpr std::size_t kFlood = 1'000'000;
constexpr char kFrame[] = "P1A2B\r";

class Hearer : public PortListener {
 public:
  void charactersArrived(std::string_view characters) override {
    largest = std::max(largest, characters.size());
    if (received.size() <= kFlood) received += characters;
  }
  void portLost() override { ++losses; }

  std::string received;
  std::size_t largest = 0;
  int losses = 0;
};

class SerialPort : public testing::Test {
 protected:
  SerialPort() { m_port.setListener(&m_hearer); }

  std::string reasonAgainst(const Pty& pty) { return test::reasonAgainst(m_port, pty); }

  bool arrives(const std::string& characters) {
    return eventually([&] { return m_hearer.received == characters; });
  }

  static bool reaches(const Pty& pty, const std::string& characters) {
    std::string all;
    return eventually([&] { return (all += pty.read()) == characters; });
  }

  static void expectStill() {
    EXPECT_LT(test::turnsDuring([] { eventually([] { return false; }, milliseconds(200)); }), 400);
  }

  Hearer m_hearer;
  QtSerialPort m_port;
};

TEST_F(SerialPort, CarriesEveryCharacterUnchanged) {
  std::string characters;
  for (int code = 0; code < 256; ++code) characters += static_cast<char>(code);
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  EXPECT_TRUE(m_port.isOpen());
  m_port.send(characters);
  EXPECT_TRUE(reaches(pty, characters));
  pty.write(characters);
  EXPECT_TRUE(arrives(characters));
  EXPECT_EQ(pty.read(), "") << "nothing is echoed";
  EXPECT_EQ(m_hearer.losses, 0);
}

TEST_F(SerialPort, RunsAt9600BaudWithoutParityAndHandshaking) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  termios line{};
  ASSERT_EQ(tcgetattr(pty.fd(), &line), 0);
  EXPECT_EQ(cfgetospeed(&line), speed_t{B9600});
  EXPECT_EQ(cfgetispeed(&line), speed_t{B9600});
  EXPECT_EQ(line.c_cflag & (CSIZE | PARENB | CSTOPB | CRTSCTS), tcflag_t{CS8});
  EXPECT_EQ(line.c_iflag & (IXON | IXOFF), tcflag_t{0});
}

/// What the serial class makes of a line that went depends on an error left over from before.
TEST_F(SerialPort, AHangUpClosesThePortIsSaidOnceAndCostsNothingAfterwards) {
  enum class Before { Nothing, Characters, Unread, Sent };
  for (const int error : {0, EAGAIN, EIO, EBADF, EACCES, ENODEV}) {
    for (const Before before :
         {Before::Nothing, Before::Characters, Before::Unread, Before::Sent}) {
      SCOPED_TRACE("error " + std::to_string(error) + ", before " +
                   std::to_string(static_cast<int>(before)));
      Pty pty;
      ASSERT_EQ(reasonAgainst(pty), "");
      m_hearer = {};
      if (before == Before::Characters || before == Before::Unread) pty.write(kFrame);
      if (before == Before::Characters) {
        EXPECT_TRUE(arrives(kFrame));
      }
      if (before == Before::Sent) m_port.send("V\r");
      pty.hangUp();
      EXPECT_TRUE(eventually([&] {
        errno = error;
        return m_hearer.losses > 0;
      }));
      EXPECT_FALSE(m_port.isOpen());
      m_port.send("V\r");
      if (error == 0) expectStill();
      m_port.close();
      EXPECT_EQ(m_hearer.losses, 1);
    }
  }
}

/// Does something once, when the next call is about to be taken from the event queue.
class BeforeNextQueuedCall : public QObject {
 public:
  explicit BeforeNextQueuedCall(std::function<void()> what) : m_what(std::move(what)) {
    QCoreApplication::instance()->installEventFilter(this);
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::MetaCall && m_what) std::exchange(m_what, {})();
    return false;
  }
  bool done() const { return !m_what; }

 private:
  std::function<void()> m_what;
};

TEST_F(SerialPort, AReopenBetweenAnErrorAndItsReportIsNotClosedByIt) {
  Pty gone;
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  ASSERT_EQ(reasonAgainst(gone), "");
  gone.hangUp();
  const BeforeNextQueuedCall reopen([&] { EXPECT_TRUE(m_port.openConfigured(pty.path()).ok()); });
  EXPECT_TRUE(eventually([&] { return reopen.done(); }));
  pty.write(kFrame);
  EXPECT_TRUE(arrives(kFrame));
  EXPECT_EQ(m_hearer.losses, 0);
}

TEST_F(SerialPort, OpensAgainAfterACloseOrALossNoticedOrNot) {
  const Pty pty;
  for (int n = 0; n < 3; ++n) {
    ASSERT_EQ(reasonAgainst(pty), "") << n;
    m_port.close();
    m_port.close();
    EXPECT_FALSE(m_port.isOpen());
  }
  for (const bool noticed : {true, false}) {
    Pty gone;
    ASSERT_EQ(reasonAgainst(gone), "");
    gone.hangUp();
    EXPECT_TRUE(!noticed || eventually([&] { return m_hearer.losses == 1; }));
    m_hearer = {};
    ASSERT_EQ(reasonAgainst(pty), "");
    pty.write(kFrame);
    EXPECT_TRUE(arrives(kFrame)) << noticed;
    EXPECT_EQ(m_hearer.losses, 0) << "an old line says nothing of the new one";
    EXPECT_TRUE(m_port.isOpen());
  }
}

TEST_F(SerialPort, WhatCameBeforeAnOpenIsDropped) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  pty.write("old");
  m_port.close();
  pty.write("older");
  ASSERT_EQ(reasonAgainst(pty), "");
  pty.write("new");
  EXPECT_TRUE(arrives("new"));
}

TEST_F(SerialPort, SendingToALineThatTakesNothingNeitherWaitsNorPilesUp) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  for (int round = 0; round < 2; ++round) {
    for (int n = 0; n < 50'000; ++n) m_port.send("Q\r");
    eventually([] { return false; }, milliseconds(50));
  }
  EXPECT_EQ(m_hearer.losses, 0);
  std::size_t taken = 0;
  EXPECT_TRUE(eventually([&] {
    const std::size_t now = pty.read().size();
    taken += now;
    return taken > 0 && now == 0;
  }));
  EXPECT_LT(taken, 20'000U);
  m_port.send("V\r");
  EXPECT_TRUE(reaches(pty, "V\r"));
}

TEST_F(SerialPort, AFloodLeavesTheEventLoopAlive) {
  const Pty pty;
  ASSERT_EQ(reasonAgainst(pty), "");
  int ticks = 0;
  {
    const std::jthread flood([line = pty.fd()](const std::stop_token& over) {
      const std::string chunk(4096, 'P');
      pollfd ready{line, POLLOUT, 0};
      while (!over.stop_requested()) {
        if (poll(&ready, 1, 10) > 0) [[maybe_unused]]
          const auto n = write(line, chunk.data(), chunk.size());
      }
    });
    QTimer timer;
    timer.callOnTimeout([&] { ++ticks; });
    timer.start(10);
    EXPECT_TRUE(eventually([&] { return m_hearer.received.size() > kFlood; }));
    const int before = ticks;
    EXPECT_TRUE(eventually([&] { return ticks >= before + 20; }));
    m_port.close();
  }
  EXPECT_LE(m_hearer.largest, 65536U);
  expectStill();
}

}  // namespace
}  // namespace qv3
