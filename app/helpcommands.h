#pragma once

#include <functional>

#include "app/window/dialogs.h"
#include "link/identification.h"

namespace qv3 {

/// What the user's desktop does for the program.
struct Desktop {
  std::function<bool()> showSystemInfo;  ///< false if there is no program that would
  std::function<void()> openGuide;       ///< a guide that cannot be shown is not mentioned
};

/// The Help menu.
class HelpCommands {
 public:
  /// All references must outlive this.
  HelpCommands(Dialogs& dialogs, Desktop desktop, const MeterIdentity& meter);

  void about();
  void help() { m_desktop.openGuide(); }

 private:
  void systemInfo();

  Dialogs& m_dialogs;
  Desktop m_desktop;
  const MeterIdentity& m_meter;
};

}  // namespace qv3
