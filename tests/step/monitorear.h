#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include "tests/step/claps.h"

namespace qv3::test {

/// Hears a null sink by its monitor. Such a sink has the rate of the server's steady clock, `ppm`
/// parts in a million faster than the machine's, so that frame number and moment differ by a
/// constant; it is taken from the read near a clap that came soonest, all others were late. The
/// sink hands a piece, no longer than `kPieceMs`, to the monitor when its first frame is heard:
/// what is told is early by no more than that.
class MonitorEar {
 public:
  static constexpr int kPieceMs = 5;

  explicit MonitorEar(int ppm);
  ~MonitorEar();
  MonitorEar(const MonitorEar&) = delete;
  MonitorEar& operator=(const MonitorEar&) = delete;

  std::vector<Moment> heard() const;

 private:
  struct Read {
    Moment at = 0;
    std::int64_t frames = 0;  ///< all that came by then
  };

  void run();
  Moment momentOf(std::int64_t frame) const;

  const double m_framesPerMs;
  std::FILE* m_recorder = nullptr;
  std::atomic<bool> m_ended = false;
  mutable std::mutex m_mutex;
  std::vector<Read> m_reads;
  std::vector<std::int64_t> m_claps;  ///< frames
  std::thread m_thread;
};

}  // namespace qv3::test
