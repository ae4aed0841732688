#pragma once

#include <QDateTime>
#include <functional>
#include <optional>

#include "app/window/mainwindow.h"
#include "instrument/meterdisplay.h"
#include "instrument/session/sessionview.h"
#include "settings/programsettings.h"

namespace qv3 {

/// What of the window's parts the settings show; `recordingHeight` is what the recording panel
/// needs.
LayoutParts layoutParts(const ProgramSettings& settings, int recordingHeight);

/// Shows on the main window what the instrument moves, in the colours, widths and styles that the
/// settings have at that moment.
class WindowDisplay final : public MeterDisplay {
 public:
  /// The references must outlive this. `localTime` is what the clock shows, `refreshMenus` brings
  /// captions, marks and enabling up to date.
  WindowDisplay(MainWindow& window, const ProgramSettings& settings,
                std::function<QDateTime()> localTime, std::function<void()> refreshMenus);

  /// The time that the clock shows instead of the present one.
  void setSessionClock(const std::optional<SessionClock>& clock);
  /// No clock until the next time that is set.
  void hideClock();

  void Draw_Panel() override;
  void moveNeedle(const NeedleMove& move) override;
  void Remove_Needle() override;
  void Update_LED(Colour colour) override;
  void Update_BaseDisplay(const std::string& text) override;
  void Update_BdDisplay(const std::string& text, bool running) override;
  void Update_ModeDisplay(const ModeLine& line) override;
  void Update_SensKnob(int position) override;
  void Update_Clock() override;
  void Update_Graph(std::int32_t reading) override;
  void rebuildGraph() override;
  void updateBackColours() override;
  void layoutWindow() override;
  void showTagCount(std::int32_t count) override;
  void showRecordTime(std::int32_t seconds) override;
  void refreshControls() override;

 private:
  void applyGraphStyle();

  MainWindow& m_window;
  const ProgramSettings& m_settings;
  std::function<QDateTime()> m_localTime;
  std::function<void()> m_refreshMenus;
  std::optional<SessionClock> m_sessionClock;
  bool m_clockHidden = false;
};

}  // namespace qv3
