#pragma once

#include <functional>
#include <memory>
#include <string>

#include "instrument/instrument.h"
#include "instrument/session/sessionview.h"
#include "recording/diskwatch.h"
#include "recording/filetasks.h"
#include "recording/journalsink.h"
#include "recording/mediaport.h"
#include "recording/soundspool.h"
#include "recording/take.h"
#include "settings/calendar.h"

namespace qv3 {

/// What a session works with. All of it outlives the session.
struct SessionWorld {
  Instrument& instrument;
  MediaPort& media;
  SoundSpool& spool;
  FileTasks& files;
  const DiskSpace& disk;
  SessionView& view;
  /// A journal for a new take.
  std::function<std::unique_ptr<JournalSink>()> newJournal;
  std::function<CalendarTime()> wall;
  std::function<Now()> now;
  std::string stateFolder;  ///< with its separator at the end, as all folders
  std::string timingTrack;  ///< full path of the silent "dummy.mp3"
  std::function<void()> beep;
};

/// The take that is recorded, loaded, played and saved, and what the parts of a session do to it
/// alike. One for the whole run.
class SessionState {
 public:
  explicit SessionState(SessionWorld sessionWorld);

  SessionWorld world;
  Take take;
  std::unique_ptr<JournalSink> journal;  ///< of an unsaved take
  bool savedByName = false;              ///< as in record mode 1, whatever the mode is
  bool offersOwnName = false;            ///< mode 1 proposes the take's own name and folder
  std::string base;                      ///< full path without extension of what is loaded

  Instrument& instrument() { return world.instrument; }
  ProgramSettings& settings() { return world.instrument.core().settings; }
  SessionView& view() { return world.view; }
  /// The record mode that says how an unsaved take is saved.
  std::int32_t saveMode() const;

  /// "Previous recording not saved, Continue?" where something is unsaved and the user wants to be
  /// warned; then `go`, unless the answer is No or `command` does not act any more by then.
  void confirmDiscard(Command command, std::function<void()> go);

  /// Discards whatever is loaded or recorded, its sound device and its labels too. What is unsaved
  /// goes to the trash, unless the user has been asked about it.
  void Flush_RecBuffer();
  /// The same, but for the device, which may have another sound open by now.
  void dropTake();

  /// The program ends: an unsaved take goes as `Flush_RecBuffer` says, its device stays for the
  /// exit sequence to close.
  void dropAtExit() { leaveJournal(); }

  void setTake(Take newTake);
  void setUnsaved(bool unsaved);
  /// Whether the user was asked about the discard that follows.
  void noteDiscardAsked(bool asked) { m_discardAsked = asked; }

  void showNothingLoaded();
  void showTotalTime();
  void tell(const std::string& name, const std::string& title, const std::string& text,
            std::function<void()> then = {});
  std::string errorText(const MediaReply& reply) { return world.media.errorText(reply.code); }

 private:
  void leaveJournal();
  void publish();

  bool m_discardAsked = false;
};

}  // namespace qv3
