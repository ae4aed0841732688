#include "instrument/session/sessionstate.h"

#include <utility>

#include "recording/transportstate.h"

namespace qv3 {

SessionState::SessionState(SessionWorld sessionWorld) : world(std::move(sessionWorld)) {}

std::int32_t SessionState::saveMode() const {
  return savedByName ? kManualMode : world.instrument.core().settings.RecordingMode;
}

void SessionState::confirmDiscard(Command command, std::function<void()> go) {
  m_discardAsked = false;
  if (!take.unsaved || !settings().RecPromptEnable) {
    go();
    return;
  }
  view().ask({"msgNotSaved", "Warning", "Previous recording not saved, Continue?"},
             [this, command, go = std::move(go)](bool yes) {
               if (!yes || !instrument().allowed(command)) return;
               m_discardAsked = true;
               go();
             });
}

void SessionState::Flush_RecBuffer() {
  world.media.send("close WavFile");
  dropTake();
}

void SessionState::dropTake() {
  leaveJournal();
  setTake({});
  base.clear();
  instrument().core().state.TagCount = 0;
  showNothingLoaded();
}

void SessionState::leaveJournal() {
  if (!journal) return;
  if (m_discardAsked || !take.unsaved) {
    journal->remove();
  } else {
    journal->moveToTrash();
  }
  journal.reset();
  m_discardAsked = false;
}

void SessionState::setTake(Take newTake) {
  take = std::move(newTake);
  savedByName = false;
  offersOwnName = false;
  publish();
}

void SessionState::setUnsaved(bool unsaved) {
  take.unsaved = unsaved;
  publish();
}

/// Commands ask the instrument whether they act.
void SessionState::publish() {
  instrument().setSessionFlags(take.loaded, take.unsaved);
}

void SessionState::showNothingLoaded() {
  view().showLoadedFile(std::string(kNoFileLoaded), std::string(kNoFileLoaded));
  view().showTag("");
  view().showTotalTime(std::nullopt);
  view().showPlayTime(0);
  view().showBar({});
  view().refreshTransport();
}

void SessionState::showTotalTime() {
  const RecordBuffer& records = take.records;
  view().showTotalTime(records.empty() ? 0 : records.at(records.count()).Time / 1000);
}

void SessionState::tell(const std::string& name, const std::string& title, const std::string& text,
                        std::function<void()> then) {
  view().tell({name, title, text}, std::move(then));
}

}  // namespace qv3
