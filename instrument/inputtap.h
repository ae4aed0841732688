#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "instrument/controls.h"
#include "instrument/now.h"
#include "recording/samplerecord.h"

namespace qv3 {

/// Hears everything that the instrument is told, before it acts.
class InputTap {
 public:
  virtual ~InputTap() = default;

  /// A receive event finds these characters; a recording with sound stands at `soundPosition`.
  virtual void received(const Now& now, std::string_view characters,
                        std::optional<std::int64_t> soundPosition) = 0;
  virtual void clockTick(const Now& now) = 0;
  virtual void keyDown(const Now& now, Key key) = 0;
  virtual void keyUp(const Now& now) = 0;
  virtual void panelPressed(const Now& now) = 0;
  virtual void bdMouse(const Now& now, bool down) = 0;
  virtual void knobMouse(const Now& now, double x, double y, int button) = 0;
  virtual void settingChanged(const Now& now, std::string_view key) = 0;
  virtual void needleTest(const Now& now, bool on) = 0;
  virtual void panelDrawn(const Now& now) = 0;
  virtual void stateChanged(const Now& now, int state) = 0;
  virtual void recordingStarted(const Now& now) = 0;
  virtual void dataStarted(const Now& now, const SessionStart& start) = 0;
  virtual void recordingStopped(const Now& now) = 0;
  virtual void recordShown(const Now& now, const SampleRecord& record) = 0;
};

}  // namespace qv3
