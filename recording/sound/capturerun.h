#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "recording/sound/disciplinedclock.h"
#include "recording/sound/soundbackend.h"
#include "recording/sound/spool.h"

namespace qv3 {

/// One stretch of recording, from `record` or `resume` to the next command. Its clock starts with
/// the command and is the position; sound is put where the clock stood when it was in the room.
/// What never came is silence. Frames are counted from the beginning of the spool.
class CaptureRun final : public CaptureFeed {
 public:
  CaptureRun(std::shared_ptr<Spool> spool, SoundTime now);

  // For the owner of the position.
  std::int64_t position(SoundTime now);
  /// Ends it at the position; what is on the way yet is taken for a while. Gives the last frame.
  std::int64_t stop(SoundTime now);
  /// Nothing more is taken.
  void close();

  StreamFormat format() const override;
  bool wanted(SoundTime now) override;
  void streamStarted() override;
  void captured(SoundTime now, std::span<const std::int16_t> frames) override;

 private:
  void hold(SoundTime now, double gap, std::span<const std::int16_t> frames);
  void place();
  void write(std::span<const std::int16_t> frames);
  void discipline(SoundTime now, double gap);
  double gapAt(SoundTime now, std::int64_t end) const;

  const std::shared_ptr<Spool> m_spool;
  const WaveFormat m_format;
  const std::int64_t m_first;  ///< frame at which the run began
  DisciplinedClock m_clock;

  mutable std::mutex m_ownerMutex;
  std::int64_t m_lastPosition;

  std::mutex m_mutex;  ///< all below
  bool m_closed = false;
  std::optional<std::int64_t> m_end;  ///< set by `stop`
  SoundTime m_closesAt{0};
  std::int64_t m_next;               ///< frame behind the last one that was placed
  std::int64_t m_written;            ///< nothing before it is touched again
  bool m_placed = false;             ///< the stream has its place
  std::vector<std::int16_t> m_held;  ///< came too early or too late, waits to be placed
  SoundTime m_heldSince{0};
  double m_heldGap = 0;
  std::optional<double> m_bestGap;  ///< of the present window
  SoundTime m_windowSince{0};
};

}  // namespace qv3
