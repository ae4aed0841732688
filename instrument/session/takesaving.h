#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "instrument/session/sessionstate.h"
#include "recording/savesession.h"
#include "recording/savetarget.h"

namespace qv3 {

/// Saves the take: by the Save button, by record mode 3, under another name.
class TakeSaving {
 public:
  struct Events {
    std::function<void()> answered;  ///< the user did not save after all what could not be saved
    std::function<void()> written;   ///< or not: the position bar is no longer the save's
  };

  TakeSaving(SessionState& state, Events events) : m_state(state), m_events(std::move(events)) {}

  /// The Save button: saves what is unsaved as its mode says, else opens Recording Setup.
  void cmdSave();
  /// "Save File As" of the loaded-file label.
  void saveFileAs();
  /// Under the prepared name, in the folder as it was at Record; `folder` replaces it if not empty.
  void saveAutomatically(const std::string& folder = {});

  /// Writes on; nothing while nothing is being saved.
  void poll();
  bool saving() const { return m_wanted.has_value(); }
  /// A save failed, and the user has not yet said what becomes of the recording.
  bool asking() const { return m_asking; }

  /// What happens once the save under way is over; `saved` is false if it failed. Replaces what
  /// failing brings else: the message and the save dialog.
  void whenOver(std::function<void(bool saved)> over) { m_over = std::move(over); }

 private:
  struct Wanted {
    SaveTarget target;
    bool numbered = false;  ///< the next automatic number follows
    bool manual = false;    ///< SavePath follows the chosen folder
    bool autoSave = false;  ///< the tool tip tells it without its extension
  };

  void chooseRecordingName();
  void typed(const std::string& path, bool manual);
  void start(Wanted wanted);
  void begin();
  void finish();
  void saved();
  void failed(const std::string& reason);
  void leftUnsaved();
  HeaderSettings header();

  SessionState& m_state;
  Events m_events;
  bool m_asking = false;
  std::optional<Wanted> m_wanted;
  std::unique_ptr<SaveSession> m_save;
  std::function<void(bool)> m_over;
};

}  // namespace qv3
