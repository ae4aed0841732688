#pragma once

#include <functional>
#include <string>

#include "settings/programsettings.h"
#include "settings/textstore.h"

namespace qv3 {

/// Twips a logical pixel.
inline constexpr double kTwipsPerPixel = 15.0;

constexpr double twipsFromPixels(double pixels) {
  return pixels * kTwipsPerPixel;
}
constexpr double pixelsFromTwips(double twips) {
  return twips / kTwipsPerPixel;
}

/// The main window as it stands when the session config is written: twips, possibly fractional, of
/// the window's normal place also while it is minimised or maximised.
struct CurrentWindow {
  double left = 0;
  double top = 0;
  double width = 0;
  /// 0 normal, 1 minimised, 2 maximised.
  int state = 0;
};

/// "qv3_Varnel.cfg", what one run leaves to the next. Eight lines, each ended by CR LF: IniPath in
/// double quotes (one within the path is doubled), then in decimal AutoSaveMode, ComPort,
/// KnobPosition, and the window's left, top, width and state, each held within 16 bits. The file
/// goes by its bare name, which is in the current directory.
///
/// It is read value by value as sequential text: a value ends at a comma or a line's end, blanks
/// around it do not count, and the text may be quoted or not.
class SessionConfigFile {
 public:
  /// `enterStateFolder` makes the program's folder for its files the current directory, for the
  /// rest of the run.
  SessionConfigFile(TextStore& store, std::function<StoreResult()> enterStateFolder);

  /// True if all eight values were read. Those before the first that cannot be read are taken.
  bool ReadSessionConfig(ProgramSettings& settings) const;

  /// Enters the folder and replaces the file. `settings.WindowGeometry` is neither used nor
  /// changed. False if either failed; whoever called says so.
  bool WriteSessionConfig(const ProgramSettings& settings, const CurrentWindow& window);

 private:
  TextStore& m_store;
  std::function<StoreResult()> m_enterStateFolder;
};

}  // namespace qv3
