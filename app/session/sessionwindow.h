#pragma once

#include <QString>
#include <functional>

#include "app/heartbeat.h"
#include "app/window/dialogs.h"
#include "app/window/windowdisplay.h"
#include "instrument/session/session.h"
#include "recording/dialog/transportpanel.h"

namespace qv3 {

/// Panel, boxes and dialogs of the session on the main window.
class SessionWindow final : public SessionView {
 public:
  struct Parts {
    TransportPanel& panel;
    WindowDisplay& display;
    Dialogs& dialogs;
    Heartbeat& heartbeat;
    ProgramSettings& settings;
    FileTasks& files;
    /// Menus and panel follow the present state.
    std::function<void()> refreshMenus;
    /// A folder that exists, to load from or to save to, for a wanted one that may not.
    std::function<QString(const QString& wanted, bool toLoad)> usableFolder;
  };

  /// All references must outlive this.
  explicit SessionWindow(Parts parts) : m_parts(std::move(parts)) {}

  void refreshTransport() override;
  void showLoadedFile(const std::string& text, const std::string& toolTip) override;
  void showTag(const std::string& text) override;
  void showPlayTime(std::int64_t seconds) override;
  void showTotalTime(std::optional<std::int64_t> seconds) override;
  void showBar(const BarState& bar) override;
  void showClock(const std::optional<SessionClock>& clock) override;
  void hideClock() override;
  void showNumberedFiles(const std::vector<std::string>& numbers, int current) override;
  void ask(const SessionNotice& question, Answer answer) override;
  void tell(const SessionNotice& notice, std::function<void()> then) override;
  void chooseSaveFile(const FileChoice& choice, Chosen chosen) override;
  void chooseLoadFile(const FileChoice& choice, Chosen chosen) override;
  void openRecordingSetup() override;

 private:
  void chooseFile(const FileChoice& choice, bool save, Chosen chosen);
  void clearSavePathThatIsGone();

  /// Answers act on the instrument: they are told with the time.
  template <typename What>
  void told(What what) {
    m_parts.heartbeat.tell([&](Instrument&, const Now&) { what(); });
  }

  Parts m_parts;
};

}  // namespace qv3
