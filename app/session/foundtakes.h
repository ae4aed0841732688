#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/window/dialogs.h"
#include "recording/journalsink.h"
#include "recording/take.h"

namespace qv3 {

/// A recording that an earlier run left behind without saving it. As long as this lives no other
/// program touches it.
struct FoundTake {
  std::string name;  ///< prepared for it
  std::uint64_t samples = 0;
  std::function<Take()> read;
  std::unique_ptr<JournalSink> journal;
};

/// All that earlier runs left behind.
struct LeftBehind {
  std::vector<FoundTake> takes;
  std::vector<std::string> unreadable;  ///< paths of journals that are left as they are
};

/// Says what cannot be read; then offers what was found, one after the other, until one is
/// recovered.
class FoundTakes {
 public:
  using Recover = std::function<void(Take take, std::unique_ptr<JournalSink> journal)>;

  FoundTakes(Dialogs& dialogs, Recover recover);

  /// `then` hears, once nothing is left to offer, whether a take was recovered.
  void offer(LeftBehind found, std::function<void(bool recovered)> then);

 private:
  void next();
  void answered(int answer);

  Dialogs& m_dialogs;
  Recover m_recover;
  std::vector<FoundTake> m_takes;
  std::function<void(bool)> m_then;
};

}  // namespace qv3
