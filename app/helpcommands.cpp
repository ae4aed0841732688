#include "app/helpcommands.h"

#include <utility>

#include "app/window/aboutdialog.h"

namespace qv3 {

HelpCommands::HelpCommands(Dialogs& dialogs, Desktop desktop, const MeterIdentity& meter)
    : m_dialogs(dialogs), m_desktop(std::move(desktop)), m_meter(meter) {}

void HelpCommands::about() {
  m_dialogs.open(std::make_unique<AboutDialog>(
                     m_meter, [this] { systemInfo(); }, &m_dialogs.window()),
                 [](bool) {});
}

void HelpCommands::systemInfo() {
  if (m_desktop.showSystemInfo()) return;
  m_dialogs.warning({QStringLiteral("msgSysInfo"), QStringLiteral("qv3 Varnel"),
                     QStringLiteral("System Information Is Unavailable At This Time")},
                    [] {});
}

}  // namespace qv3
