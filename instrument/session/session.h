#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "instrument/session/sessionstate.h"
#include "instrument/session/takeloading.h"
#include "instrument/session/takeplayback.h"
#include "instrument/session/takerecording.h"
#include "instrument/session/takesaving.h"
#include "instrument/session/testmode.h"
#include "recording/transportstate.h"

namespace qv3 {

/// Recording, playback, loading and saving as the user meets them: one take at a time, and the
/// operation that is under way with it. Told the time by `poll` as often as `pollPeriod` says.
class Session {
 public:
  explicit Session(SessionWorld world);

  void cmdRecord() { m_recording.cmdRecord(); }
  void cmdStop(const Now& now);
  void cmdPlay(const Now& now) { m_playback.cmdPlay(now); }
  void skip(bool forward, const Now& now) { m_playback.skip(forward, now); }
  void cmdLoop();
  void cmdLoad() { m_loading.cmdLoad(); }
  void listNumbered() { m_loading.listNumbered(); }
  void loadNumbered(const std::string& number) { m_loading.loadNumbered(number); }
  void open(const std::string& path) { m_loading.open(path); }
  void cmdSave() { m_saving.cmdSave(); }
  void saveFileAs() { m_saving.saveFileAs(); }
  void seekTo(int x, const Now& now) { m_playback.seekTo(x, now); }
  void setRange(int fromX, int toX) { m_playback.setRange(fromX, toX); }
  void wholeRange() { m_playback.wholeRange(); }

  /// The item that starts and ends the test mode, its beep and its speed.
  void testControl(const Now& now) { m_test.control(now); }
  void toggleTestBeep() { m_test.beeps = !m_test.beeps; }
  void setTestPeriod(int milliseconds) { m_test.period = milliseconds; }
  const TestMode& test() const { return m_test; }

  /// The Audio menu. What is loaded or recorded is discarded, after the question.
  void setAudio(bool on);
  /// The recording panel was hidden: the device is closed; what is unsaved stays.
  void panelHidden();

  /// A recording found after a crash, as one just made in manual mode; `journal` is its own.
  void recover(Take take, std::unique_ptr<JournalSink> journal);

  void received(const Now& now) { m_recording.received(now); }
  void poll(const Now& now);
  /// Nothing: there is nothing to poll.
  std::optional<std::chrono::milliseconds> pollPeriod() const;

  /// What every control of the transport panel shows.
  TransportState transport() const;

  /// Ends what is under way, after its question; `go` hears whether the program may end. At once or
  /// later, from a poll.
  void prepareExit(std::function<void(bool go)> go);
  /// The same without a question: what is unsaved is saved, to its prepared place or else into the
  /// state folder.
  void prepareSilentExit(std::function<void()> go);

  const Take& take() const { return m_state.take; }

 private:
  void recordingEnded(bool kept);
  void finishRecording();
  void askAtExit(std::function<void(bool)> go);
  void endUnderWay(std::function<void(bool)> go);
  void stopPlayback(const Now& now);
  void settleExit();

  SessionState m_state;
  TakeRecording m_recording;
  TakePlayback m_playback;
  TakeLoading m_loading;
  TakeSaving m_saving;
  TestMode m_test;
  std::function<void()> m_exit;  ///< waits for the end of a stop or a save
};

}  // namespace qv3
