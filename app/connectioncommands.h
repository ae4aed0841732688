#pragma once

#include <QObject>
#include <functional>

#include "app/commandtable.h"
#include "app/heartbeat.h"
#include "app/window/dialogs.h"
#include "link/metersearch.h"
#include "settings/programsettings.h"

namespace qv3 {

/// The Connection menu: looks for the meter, asks again where none answers, and talks to the one
/// found. While it looks, the instrument is in `Operation::Probing` and events go on.
class ConnectionCommands : public QObject {
 public:
  struct Events {
    std::function<void()> connected;  ///< live, from now on its characters are told
    std::function<void()> givenUp;    ///< a search ended because the program is closing
  };

  /// All references must outlive this.
  ConnectionCommands(ProgramSettings& settings, MeterSearch& search, Heartbeat& heartbeat,
                     Dialogs& dialogs, Events events);

  void connectMeter();
  /// 0 closes the port.
  void choosePort(int port);
  void chooseSensor(bool remote);
  void toggleNeedleTest();

  /// Start-up: looks on the configured port, without a question. True if the meter answered;
  /// nothing, and `givenUp` was told, if the program is closing.
  std::optional<bool> probeConfiguredPort();

  /// Start-up: looks on all ports until a meter is found or the user cancels.
  void searchAll(std::function<void(bool found)> then);

  /// The instrument goes live with the meter found last, or stands without one.
  void goLive(std::size_t threshold);
  void standWithout();

  /// What the meter connected last said of itself; empty until one has.
  const MeterIdentity& identity() const { return m_identity; }

 private:
  using Search = std::function<SearchResult()>;
  using Then = std::function<void(bool found)>;

  /// `again` is the search that Retry runs.
  void look(Search search, Search again, Then then);
  void searchNow(const Search& search, const Search& again, const Then& then);
  void ask(const SearchResult& result, Search again, Then then);
  void take(const SearchResult& result);
  void settle(bool found);

  ProgramSettings& m_settings;
  MeterSearch& m_search;
  Heartbeat& m_heartbeat;
  Dialogs& m_dialogs;
  Events m_events;
  MeterIdentity m_identity;
};

}  // namespace qv3
