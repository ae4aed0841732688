#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "recording/mediaport.h"

namespace qv3 {

/// The clock of a playback: the session's sound, or, from the first command or question that the
/// device refuses, a steady clock of its own at the same place. Positions are in the device's
/// units.
class SessionSound {
 public:
  using Instant = std::chrono::microseconds;

  enum class Mode { Stopped, Playing, Paused };

  explicit SessionSound(MediaPort& port) : m_port(port) {}

  /// The sound of another session: `unitsPerSecond` of its device, `audible` false where the
  /// session has none that can be played.
  void attach(std::int32_t unitsPerSecond, bool audible);
  std::int32_t unitsPerSecond() const { return m_units; }

  /// Position of a time in milliseconds, halves to even.
  std::int64_t positionOf(std::int32_t milliseconds) const;

  void seek(std::int64_t position, Instant now);
  void play(Instant now);
  void playFrom(std::int64_t position, Instant now);
  void pause(Instant now);
  void stop(Instant now);

  Mode mode();

  /// The latest position.
  std::int64_t position(Instant now);

 private:
  bool send(const std::string& command);
  void takeOver();
  std::int64_t ownPosition(Instant now) const;

  MediaPort& m_port;
  std::int32_t m_units = 1000;
  bool m_device = false;
  std::int64_t m_position = 0;  ///< last known
  Mode m_ownMode = Mode::Stopped;
  Instant m_ownSince{0};  ///< when the own clock stood at `m_position`
};

}  // namespace qv3
