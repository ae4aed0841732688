#pragma once

#include <optional>
#include <string>

#include "recording/take.h"

namespace qv3 {

/// Where the sound device keeps what it records.
class SoundSpool {
 public:
  virtual ~SoundSpool() = default;

  /// The sound recorded last, its lead-in cut; nothing if there is none.
  virtual std::optional<TakeSound> recorded() const = 0;
  /// Whether it is complete: after a stop sound may still be on its way.
  virtual bool settled() const = 0;
  /// Why the running recording cannot write its sound, in words; empty if it can.
  virtual std::string failure() const = 0;
};

}  // namespace qv3
