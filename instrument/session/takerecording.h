#pragma once

#include <functional>
#include <optional>

#include "instrument/recordcontrol.h"
#include "instrument/session/sessionstate.h"
#include "recording/diskwatch.h"
#include "recording/journalsink.h"

namespace qv3 {

/// Makes a take: from the press of Record to the stopped recording in its journal.
class TakeRecording final : private RecordEvents {
 public:
  /// `ended` hears of the end of a recording, whether or not something was kept.
  TakeRecording(SessionState& state, std::function<void(bool kept)> ended);

  /// The Record button.
  void cmdRecord();
  void stop(const Now& now) { m_control.stop(RecordControl::Cause::User, now); }
  /// Ends it unsaved here and now.
  void giveUp(const Now& now);

  void poll(const Now& now);
  /// After each receive event.
  void received(const Now& now);

 private:
  void begin();
  void prepareTake();
  void watchDisk(const Now& now);
  DiskWatch::Verdict tellDisk();
  void watchSound(const Now& now);
  std::optional<std::int64_t> secondsLeft() const;
  void dataStarted(const SessionStart& start) override;
  void soundRefused(const std::string& reason) override;
  void recordingEnded(bool kept) override;

  SessionState& m_state;
  std::function<void(bool)> m_ended;
  RecordControl m_control;
  std::optional<JournalFeed> m_feed;
  DiskWatch m_disk;
  Instant m_diskLooked{0};
};

}  // namespace qv3
