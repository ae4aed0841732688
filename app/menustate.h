#pragma once

#include <string>

#include "app/commandtable.h"
#include "instrument/meterdisplay.h"
#include "link/porttable.h"
#include "settings/programsettings.h"

namespace qv3 {

/// What the menus show, at one moment.
struct MenuState {
  Situation situation;
  const ProgramSettings& settings;
  const PortTable& ports;
  SensorMark sensor = SensorMark::None;
  bool needleTest = false;
  bool testBeeps = false;
  int testPeriod = 0;  ///< ms a record of the test mode

  bool enabled(const MenuRow& row) const;
  bool visible(const MenuRow& row) const;

  /// Whether the mark is to be set. A row of `Mark::Keep` that has its mark may keep it all the
  /// same.
  bool checked(const MenuRow& row) const;

  std::string caption(const MenuRow& row) const;
  std::string toolTip(const MenuRow& row) const;

 private:
  bool portInUse(int port) const;
};

}  // namespace qv3
