#include "link/metersearch.h"

#include <utility>

namespace qv3 {
namespace {

constexpr int kSettleTicks = 10;  // the meter is not ready sooner after the line was opened
constexpr int kQuietTicks = 2;
constexpr double kDiscardSeconds = 0.1;
constexpr double kAnswerSeconds = 0.5;
constexpr double kSliceSeconds = 0.01;
constexpr int kCollectSlices = 20;  // 0.2 s at most

}  // namespace

MeterSearch::MeterSearch(CommPort& port, PortTable& table, Waiter& waiter,
                         std::function<void(const std::string&)> showStatus)
    : m_port(port), m_table(table), m_waiter(waiter), m_showStatus(std::move(showStatus)) {}

void MeterSearch::Init_Ports() {
  leaveLink();
  for (int port = 1; port <= PortTable::kLast; ++port) {
    m_table.scanned(port, m_port.Com_Open(m_table.path(port)));
    m_port.Com_Close();
  }
}

SearchResult MeterSearch::searchAll(bool qv3SensorMode, int expected) {
  m_table.expect(expected);
  m_givenUp = false;
  Init_Ports();
  for (int port = 1; port <= PortTable::kLast && !m_givenUp; ++port) {
    if (m_table.exists(port) && Check_Version(port, qv3SensorMode)) return finish(port);
  }
  return finish(0);
}

SearchResult MeterSearch::searchOne(int port, bool qv3SensorMode) {
  m_table.expect(port);
  m_givenUp = false;
  leaveLink();
  return finish(Check_Version(port, qv3SensorMode) ? port : 0);
}

SearchResult MeterSearch::finish(int foundPort) {
  SearchResult result{SearchEnd::Found, foundPort, m_identity, m_table.reasons(), m_table.helps()};
  if (foundPort != 0) return result;
  result.end = m_givenUp ? SearchEnd::GivenUp : SearchEnd::NotFound;
  if (!m_givenUp) m_showStatus("No Hardware Detected");
  return result;
}

bool MeterSearch::Check_Version(int port, bool qv3SensorMode) {
  m_showStatus("Checking Port " + std::to_string(port) + " for Hardware");
  m_port.Com_Close();
  const bool identified = open(port) && TDelay(kSettleTicks) && send({"Q"}) &&
                          TDelay(kQuietTicks) && send({"Q"}) && wait(kDiscardSeconds) &&
                          Com_Input_Vers();
  if (identified && startStream(port, qv3SensorMode)) return true;
  m_port.Com_Close();
  return false;
}

bool MeterSearch::Com_Input_Vers() {
  m_port.clearReceived();
  if (!send({"V"}) || !wait(kAnswerSeconds)) return false;
  ReplyCollector collector;
  for (int slice = 0;; ++slice) {
    const bool complete = collector.add(m_port.peek());
    m_port.clearReceived();
    if (complete || slice == kCollectSlices) break;
    if (!wait(kSliceSeconds)) return false;
  }
  return takeReply(collector.reply(), m_identity);
}

bool MeterSearch::startStream(int port, bool qv3SensorMode) {
  m_port.Com_Close();
  const std::string& model = m_identity.MeterVersion;
  if (model == "40" || model == "2A") return open(port) && send({"U", "R", "O"});
  if (model == "3A") return open(port) && TDelay(kSettleTicks) && send({"U", "R"});
  if (model == "31") {
    return open(port) && TDelay(kSettleTicks) && send({qv3SensorMode ? "SR" : "SL"}) &&
           TDelay(kSettleTicks) && send({"U"}) && TDelay(kSettleTicks) && send({"R"});
  }
  return true;
}

/// Opens the port by its number; a failure is kept for the user.
bool MeterSearch::open(int port) {
  const PortResult result = m_port.Com_Open(m_table.path(port));
  m_table.opened(port, result);
  return result.ok();
}

/// False if the line went meanwhile.
bool MeterSearch::send(std::initializer_list<std::string_view> commands) {
  for (const std::string_view command : commands) m_port.sendCommand(command);
  return m_port.isOpen();
}

bool MeterSearch::TDelay(int ticks) {
  const bool waited = m_waiter.TDelay(ticks);
  m_givenUp = m_givenUp || !waited;
  return waited;
}

bool MeterSearch::wait(double seconds) {
  const bool waited = m_waiter.wait(seconds);
  m_givenUp = m_givenUp || !waited;
  return waited;
}

void MeterSearch::leaveLink() {
  m_port.Com_Close();
  m_port.setReceiveThreshold(0);
}

}  // namespace qv3
