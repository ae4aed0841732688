#pragma once

#include <cstdint>

namespace qv3 {

/// What Recording Setup shows and lets be changed, by the clicks that led there. The rules follow
/// one another as the clicks do: a suffix type that was chosen keeps its number on view until a
/// record mode without one is chosen.
struct SetupRules {
  bool automaticModes = true;  ///< Auto Name and Auto Save: both need a folder
  bool suffixTypes = false;    ///< both options
  bool reset = false;
  bool prompt = true;        ///< a recording that saves itself is never left unsaved
  bool numberShown = false;  ///< the next number, and the warning about Reset

  /// What stands before the present options are clicked.
  static SetupRules opened(bool folder);

  /// Record modes 1 Manual, 2 Auto Name, 3 Auto Save.
  void modeClicked(int mode, bool numeric, std::int32_t suffixNum);
  /// Suffix types 0 numeric, 1 date and time.
  void suffixClicked(int type, std::int32_t suffixNum);
  void folderChosen(bool folder);
  /// The number is 1 again.
  void numberReset() { reset = false; }

  bool operator==(const SetupRules&) const = default;
};

}  // namespace qv3
