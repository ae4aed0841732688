#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "link/commport.h"
#include "link/identification.h"
#include "link/porttable.h"
#include "link/waiter.h"

namespace qv3 {

enum class SearchEnd {
  Found,
  NotFound,
  GivenUp  ///< a wait was given up because the program is closing
};

struct SearchResult {
  SearchEnd end = SearchEnd::NotFound;
  int port = 0;                      ///< where the meter answered, else 0
  MeterIdentity identity;            ///< of the meter found, else of the one before
  std::vector<std::string> reasons;  ///< a line for each port that could not be opened
  std::vector<std::string> helps;    ///< what to do about them
};

/// Looks for the meter on the ports, identifies it and starts its data stream. Straight-line code
/// over the waits it is given, during which events go on. From the start of a search the receive
/// threshold is 0, so that a reply is never taken for data; it stays 0, and whoever takes the
/// result raises it. After a search the port is open if a meter was found that it knows how to
/// start; a meter of an unknown model is found and left alone with its port closed.
class MeterSearch {
 public:
  /// `showStatus` is told what goes on: "Checking Port 3 for Hardware", "No Hardware Detected". All
  /// references must outlive the search.
  MeterSearch(CommPort& port, PortTable& table, Waiter& waiter,
              std::function<void(const std::string&)> showStatus);

  /// Closes the port and opens and closes each of the 16 to learn which exist.
  void Init_Ports();

  /// Scans, then probes every port that exists from 1 to 16. `qv3SensorMode`, here and below, is
  /// the sensor to choose on a model "31" meter: false local, true remote. If the device of port
  /// `expected` is missing, the result says so.
  SearchResult searchAll(bool qv3SensorMode, int expected = 0);

  /// Probes one port without a scan, 1.2 to 3.1 s.
  SearchResult searchOne(int port, bool qv3SensorMode);

 private:
  bool Check_Version(int port, bool qv3SensorMode);
  bool Com_Input_Vers();
  void leaveLink();
  bool open(int port);
  bool startStream(int port, bool qv3SensorMode);
  bool send(std::initializer_list<std::string_view> commands);
  bool TDelay(int ticks);
  bool wait(double seconds);
  SearchResult finish(int foundPort);

  CommPort& m_port;
  PortTable& m_table;
  Waiter& m_waiter;
  std::function<void(const std::string&)> m_showStatus;
  MeterIdentity m_identity;
  bool m_givenUp = false;
};

}  // namespace qv3
