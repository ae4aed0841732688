#include "app/connectioncommands.h"

#include <QTimer>
#include <utility>

namespace qv3 {
namespace {

constexpr std::size_t kFrameLength = 6;

QString questionText(const SearchResult& result) {
  QString text =
      QStringLiteral("No qv3 Varnel meter was found. Please check the connection and try again.");
  if (!result.reasons.empty()) text += QLatin1Char('\n');
  for (const std::string& reason : result.reasons) {
    text += QLatin1Char('\n') + QString::fromStdString(reason);
  }
  for (const std::string& help : result.helps) {
    text += QStringLiteral("\n\n") + QString::fromStdString(help);
  }
  return text;
}

}  // namespace

ConnectionCommands::ConnectionCommands(ProgramSettings& settings, MeterSearch& search,
                                       Heartbeat& heartbeat, Dialogs& dialogs, Events events)
    : m_settings(settings),
      m_search(search),
      m_heartbeat(heartbeat),
      m_dialogs(dialogs),
      m_events(std::move(events)) {}

void ConnectionCommands::connectMeter() {
  searchAll([this](bool found) { settle(found); });
}

void ConnectionCommands::choosePort(int port) {
  if (port != 0) {
    const Search probe = [this, port] {
      return m_search.searchOne(port, m_settings.qv3SensorMode);
    };
    const Search again = [this, probe] {
      m_search.Init_Ports();
      return probe();
    };
    look(probe, again, [this](bool found) { settle(found); });
    return;
  }
  m_settings.ComPort = 0;
  m_heartbeat.tell([](Instrument& meter, const Now&) { meter.core().port.Com_Close(); });
  standWithout();
}

void ConnectionCommands::chooseSensor(bool remote) {
  m_heartbeat.tell([&](Instrument& meter, const Now&) { meter.chooseSensor(remote); });
}

void ConnectionCommands::toggleNeedleTest() {
  m_heartbeat.tell([](Instrument& meter, const Now& now) {
    meter.setNeedleTest(!meter.state().NeedleTest, now);
  });
}

std::optional<bool> ConnectionCommands::probeConfiguredPort() {
  const SearchResult result = m_search.searchOne(m_settings.ComPort, m_settings.qv3SensorMode);
  if (result.end == SearchEnd::GivenUp) {
    m_events.givenUp();
    return std::nullopt;
  }
  take(result);
  return result.end == SearchEnd::Found;
}

void ConnectionCommands::searchAll(Then then) {
  const Search all = [this] {
    return m_search.searchAll(m_settings.qv3SensorMode, m_settings.ComPort);
  };
  look(all, all, std::move(then));
}

/// The search waits for seconds with events going on, so it runs from the event loop and not inside
/// the menu or the box that asked for it.
void ConnectionCommands::look(Search search, Search again, Then then) {
  m_heartbeat.tell([](Instrument& meter, const Now&) { meter.setOperation(Operation::Probing); });
  QTimer::singleShot(0, this, [=, this] {
    if (m_heartbeat.instrument().operation() == Operation::Probing) searchNow(search, again, then);
  });
}

void ConnectionCommands::searchNow(const Search& search, const Search& again, const Then& then) {
  const SearchResult result = search();
  switch (result.end) {
    case SearchEnd::GivenUp:
      m_events.givenUp();
      break;
    case SearchEnd::NotFound:
      ask(result, again, then);
      break;
    case SearchEnd::Found:
      take(result);
      then(true);
      break;
  }
}

void ConnectionCommands::ask(const SearchResult& result, Search again, Then then) {
  m_dialogs.retry({QStringLiteral("msgNoHardware"), QStringLiteral("No Hardware Detected"),
                   questionText(result)},
                  [this, again = std::move(again), then = std::move(then)](bool retry) {
                    if (retry) {
                      look(again, again, then);
                    } else {
                      then(false);
                    }
                  });
}

/// Only a meter that answered changes the port in use.
void ConnectionCommands::take(const SearchResult& result) {
  if (result.end != SearchEnd::Found) return;
  m_settings.ComPort = static_cast<std::int16_t>(result.port);
  m_identity = result.identity;
  m_heartbeat.tell([&](Instrument& meter, const Now&) {
    meter.core().state.MeterVersion = m_identity.MeterVersion;
  });
}

void ConnectionCommands::settle(bool found) {
  if (found) {
    goLive(kFrameLength);
  } else {
    standWithout();
  }
}

void ConnectionCommands::goLive(std::size_t threshold) {
  m_events.connected();
  m_heartbeat.tell([&](Instrument& meter, const Now& now) { meter.connected(threshold, now); });
}

void ConnectionCommands::standWithout() {
  m_heartbeat.tell([](Instrument& meter, const Now& now) { meter.disconnected(now); });
}

}  // namespace qv3
