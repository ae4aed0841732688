#pragma once

#include <functional>

#include "instrument/session/sessionstate.h"
#include "recording/recordbuffer.h"
#include "recording/sessionsound.h"

namespace qv3 {

/// Test mode: a generated signal drives the needle in place of a meter or a recording, in step with
/// the silent timing track.
class TestMode {
 public:
  /// `discarded` hears that what was loaded or recorded is gone, for the signal's sake.
  TestMode(SessionState& state, std::function<void()> discarded);

  /// Starts it, after the question about what is unsaved, or ends it.
  void control(const Now& now);
  /// Nothing while it does not run.
  void stop(const Now& now);
  void poll(const Now& now);

  bool beeps = false;  ///< once a cycle
  int period = 20;     ///< ms a record

 private:
  void begin(const Now& now);

  SessionState& m_state;
  std::function<void()> m_discarded;
  SessionSound m_sound;
  RecordBuffer m_records;
  std::size_t m_index = 1;
  std::int64_t m_due = 0;  ///< when the present record was due, in ms of the sound
};

}  // namespace qv3
