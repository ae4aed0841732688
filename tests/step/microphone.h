#pragma once

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/step/claps.h"

namespace qv3::test {

/// A microphone in software: the far end of a sound server's pipe source, 44100 Hz, 16 bit, one
/// channel. Its clock runs `ppm` parts in a million faster than the steady clock, and by it every
/// frame has the moment at which it was in the room.
class Microphone {
 public:
  static constexpr double kRate = 44100;

  /// The server must have opened the pipe. It hears silence until somebody claps.
  Microphone(int ppm, const std::string& pipe);
  ~Microphone();
  Microphone(const Microphone&) = delete;
  Microphone& operator=(const Microphone&) = delete;

  /// From now on somebody claps.
  void clap();
  std::vector<Moment> clapped() const;

  /// Milliseconds of sound since then for which the server had no room: it stood still.
  double lost() const;

 private:
  void run();
  void record(std::int64_t due);

  const double m_framesPerMs;
  const int m_pipe;
  const Moment m_began = momentNow();

  mutable std::mutex m_mutex;  ///< all below
  std::condition_variable m_wake;
  bool m_ended = false;
  std::int64_t m_recorded = 0;  ///< frames
  std::int64_t m_lost = 0;      ///< frames
  ClapShape m_shape{kRate};
  ClapGaps m_gaps;
  std::optional<std::int64_t> m_clap;  ///< frame at which the present one begins
  std::vector<Moment> m_clapped;
  std::thread m_thread;
};

}  // namespace qv3::test
