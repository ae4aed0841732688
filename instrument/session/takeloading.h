#pragma once

#include <functional>
#include <memory>
#include <string>

#include "instrument/session/sessionstate.h"
#include "instrument/session/takesound.h"
#include "recording/sessionloader.h"

namespace qv3 {

/// Loads sessions: by the file dialog, from the numbered list, or by name.
class TakeLoading {
 public:
  /// `loaded` hears of a take that is ready, with its sound device.
  TakeLoading(SessionState& state, std::function<void(const OpenedSound&)> loaded);

  /// The Load button, left.
  void cmdLoad();
  /// The Load button, right: the numbered files beside the one loaded.
  void listNumbered();
  /// An entry of the list.
  void loadNumbered(const std::string& number);
  /// `path` of a data file; what is unsaved is asked about first.
  void open(const std::string& path);

  /// Opens the silent timing track; what is wrong with it is said.
  void checkTimingTrack() { (void)openTiming(); }

  /// Reads on; nothing while nothing is being loaded.
  void poll();
  /// What was read is given up.
  void giveUp();
  bool loading() const { return m_loader != nullptr; }

 private:
  void discardAndLoad(const std::string& path);
  /// `Load_File`: `base` is the full path without extension, `path` that of the data file.
  void Load_File(const std::string& base, const std::string& path);
  bool findSound(Take& take);
  bool openTiming();
  void showProgress();
  void finish();
  void refuseFormat();

  SessionState& m_state;
  std::function<void(const OpenedSound&)> m_loaded;
  std::unique_ptr<SessionLoader> m_loader;
  Take m_take;  ///< what is being loaded
  OpenedSound m_sound;
  std::string m_path;
  std::string m_numberedPrefix;
};

/// The folder of a path, with its separator at the end; empty if it names none.
std::string folderOf(const std::string& path);
/// What follows the folder.
std::string fileOf(const std::string& path);

}  // namespace qv3
