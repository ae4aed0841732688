#pragma once

#include <optional>

#include "recording/mediaport.h"
#include "recording/soundclock.h"

namespace qv3::bench {

class NoSound final : public SoundClock {
 public:
  std::optional<std::int64_t> position() override { return std::nullopt; }
};

/// Answers yes to everything; recordings are made without sound.
class NoMedia final : public MediaPort {
 public:
  MediaReply send(std::string_view) override { return {}; }
  std::string errorText(int) override { return {}; }
};

}  // namespace qv3::bench
