#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "recording/positionbar.h"

namespace qv3 {

inline constexpr std::string_view kNoFileLoaded = "No File Loaded";
inline constexpr std::string_view kBuffer = "Buffer";

/// Which of the panel's commands act at the moment. Whoever knows all that is under way tells; the
/// panel shows.
struct TransportAllowed {
  bool record = false;
  bool stop = false;
  bool play = false;
  bool skip = false;
  bool loop = false;
  bool load = false;
  bool save = false;
  bool saveFileAs = false;
  bool positionLeft = false;
  bool positionRight = false;
};

enum class PlayFlag { No, Playing, Paused };

/// All that the panel's looks depend on.
struct TransportInputs {
  int programState = 0;  ///< 0 no meter, 1 live, 2 playback, 3 recording
  PlayFlag play = PlayFlag::No;
  bool unsaved = false;
  std::int32_t RecordingMode = 2;
  /// How an unsaved recording is saved: `RecordingMode`, or 1 once a write has failed.
  std::int32_t saveMode = 2;
  std::string SavePath;  ///< empty if there is none, or if it is no folder any more
  std::string SavePrefix;
  std::int32_t SuffixType = 1;
  bool PlayLoopEnable = false;
  TransportAllowed allowed;
};

enum class TransportSymbol {
  Record,
  Stop,
  Play,
  Pause,
  Rev,
  Fwd,
  Single,
  Loop,
  Load,
  Save,
  SaveAs,
  Settings
};

/// What a press of `cmdSave` does.
enum class SaveUse { Settings, Save, SaveAs };

struct ButtonState {
  bool enabled = false;
  TransportSymbol symbol = TransportSymbol::Stop;
  std::string_view caption;
  std::string_view toolTip;
  bool lit = false;  ///< what it stands for is going on

  bool operator==(const ButtonState&) const = default;
};

struct RecordModeLabel {
  std::string text;
  std::string toolTip;

  bool operator==(const RecordModeLabel&) const = default;
};

/// What every control of the transport panel shows.
struct TransportState {
  ButtonState cmdRecord;
  ButtonState cmdStop;
  ButtonState cmdPlay;
  ButtonState cmdRev;
  ButtonState cmdFwd;
  ButtonState cmdLoop;
  ButtonState cmdLoad;
  ButtonState cmdSave;
  bool recordModeEnabled = false;
  std::optional<RecordModeLabel> lblRecordMode;  ///< nothing: it stays as it is
  bool saveFileAs = false;                       ///< a press on `lblLoadedFile` acts
  bool cboFile = false;
  bool playTimeRed = false;
  SaveUse saveUse = SaveUse::Settings;
  BarUse barUse = BarUse::None;
  bool wholeRange = false;  ///< a right press on `picFilePosition` acts
};

/// With nothing unsaved, or with a recording whose mode has nothing to be saved by hand, the button
/// is used to open the settings of recording.
SaveUse saveUse(bool unsaved, std::int32_t saveMode);

/// The mode's name, and where its recordings go; nothing for a mode that has no name.
std::optional<RecordModeLabel> recordModeLabel(const TransportInputs& inputs);

TransportState transportState(const TransportInputs& inputs);

}  // namespace qv3
