#pragma once

#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "instrument/inputtap.h"
#include "instrument/instrument.h"
#include "settings/programsettings.h"

namespace qv3 {

/// Writes everything that the instrument is told as a replay script, so that an odd stream can be
/// sent in and looked at: FILE for the first connection, FILE-2, FILE-3 and so on for the next.
/// Lines are written as they come; a file that cannot be written ends the capture, see `failure`.
class Capture final : public InputTap {
 public:
  /// `settings` must outlive the capture.
  Capture(std::string path, const ProgramSettings& settings);

  /// A meter was just connected: a new file, which begins with the settings and the state.
  void begin(Instrument& instrument, const Now& now);

  /// Empty, or what to tell the user once.
  const std::string& failure() const { return m_failure; }

  void received(const Now& now, std::string_view characters,
                std::optional<std::int64_t> soundPosition) override;
  void clockTick(const Now& now) override;
  void keyDown(const Now& now, Key key) override;
  void keyUp(const Now& now) override;
  void panelPressed(const Now& now) override;
  void bdMouse(const Now& now, bool down) override;
  void knobMouse(const Now& now, double x, double y, int button) override;
  void settingChanged(const Now& now, std::string_view key) override;
  void needleTest(const Now& now, bool on) override;
  void panelDrawn(const Now& now) override;
  void stateChanged(const Now& now, int state) override;
  void recordingStarted(const Now& now) override;
  void dataStarted(const Now& now, const SessionStart& start) override;
  void recordingStopped(const Now& now) override;
  void recordShown(const Now& now, const SampleRecord& record) override;

 private:
  void line(const Now& now, const std::string& members);
  void set(const Now& now, std::string_view name, const std::string& value);
  std::string fileName() const;

  std::string m_path;
  const ProgramSettings& m_settings;
  std::ofstream m_file;
  std::string m_failure;
  Instant m_began{0};
  int m_connections = 0;
  std::optional<std::int64_t> m_soundPosition;
};

}  // namespace qv3
