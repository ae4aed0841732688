#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "recording/positionbar.h"

namespace qv3 {

/// A text that the user is shown or has to answer; `name` is the box's object name.
struct SessionNotice {
  std::string name;
  std::string title;
  std::string text;
};

/// What a file dialog is opened with.
struct FileChoice {
  std::string name;
  std::string title;
  std::string filter;
  std::string folder;
  std::string fileName;
};

/// The day and time that the clock shows during a playback.
struct SessionClock {
  std::int64_t secondsOfDay = 0;  ///< 0..86399
  std::int64_t day = 0;           ///< days since 31 December 1999
};

/// Panel, boxes and dialogs of a session. No call waits: answers come by the callbacks, from the
/// event loop; a cancelled file dialog answers with an empty path.
class SessionView {
 public:
  using Answer = std::function<void(bool yes)>;
  using Chosen = std::function<void(const std::string& path)>;

  virtual ~SessionView() = default;

  /// Buttons, menus and record-mode label follow the new state.
  virtual void refreshTransport() = 0;
  virtual void showLoadedFile(const std::string& text, const std::string& toolTip) = 0;
  virtual void showTag(const std::string& text) = 0;
  virtual void showPlayTime(std::int64_t seconds) = 0;
  /// Nothing: the label is empty.
  virtual void showTotalTime(std::optional<std::int64_t> seconds) = 0;
  virtual void showBar(const BarState& bar) = 0;
  /// Nothing: the present time again.
  virtual void showClock(const std::optional<SessionClock>& clock) = 0;
  /// The session that plays does not tell when it was made.
  virtual void hideClock() = 0;
  virtual void showNumberedFiles(const std::vector<std::string>& numbers, int current) = 0;

  virtual void ask(const SessionNotice& question, Answer answer) = 0;
  /// `then` is called once the user has read it.
  virtual void tell(const SessionNotice& notice, std::function<void()> then) = 0;
  virtual void chooseSaveFile(const FileChoice& choice, Chosen chosen) = 0;
  virtual void chooseLoadFile(const FileChoice& choice, Chosen chosen) = 0;
  virtual void openRecordingSetup() = 0;
};

}  // namespace qv3
