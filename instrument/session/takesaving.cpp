#include "instrument/session/takesaving.h"

#include <utility>

#include "instrument/session/takesound.h"
#include "recording/transportstate.h"

namespace qv3 {
namespace {

constexpr const char* kFilter = "QVD file (*.qvd*)|*.qvd";
constexpr int kSlicesAPoll = 8;

std::string namesOf(const std::vector<std::string>& paths) {
  std::string text;
  for (const std::string& path : paths) text += '\n' + path;
  return text;
}

}  // namespace

void TakeSaving::cmdSave() {
  if (!m_state.instrument().allowed(Command::Save)) return;
  switch (saveUse(m_state.take.unsaved, m_state.saveMode())) {
    case SaveUse::Settings:
      m_state.view().openRecordingSetup();
      break;
    case SaveUse::SaveAs:
      chooseRecordingName();
      break;
    case SaveUse::Save:
      saveAutomatically();
      break;
  }
}

void TakeSaving::chooseRecordingName() {
  const ProgramSettings& settings = m_state.settings();
  FileChoice choice{"dlgSaveRecordingAs", "Save Recording As", kFilter, settings.SavePath,
                    settings.SavePrefix};
  if (m_state.offersOwnName) {
    choice.folder = m_state.take.folder;
    choice.fileName = m_state.take.name;
  }
  m_state.view().chooseSaveFile(choice, [this](const std::string& path) { typed(path, true); });
}

void TakeSaving::saveFileAs() {
  if (!m_state.instrument().allowed(Command::SaveFileAs)) return;
  const std::string folder =
      m_state.take.unsaved ? m_state.settings().SavePath : m_state.take.folder;
  m_state.view().chooseSaveFile(
      {"dlgSaveFileAs", "Save File As", kFilter, folder, m_state.take.name},
      [this](const std::string& path) { typed(path, false); });
}

/// A name that the user typed: files in its way are named in a question.
void TakeSaving::typed(const std::string& path, bool manual) {
  const Command command = manual ? Command::Save : Command::SaveFileAs;
  if (path.empty() || !m_state.instrument().allowed(command)) {
    leftUnsaved();
    return;
  }
  const Wanted wanted{typedTarget(path), manual && m_state.settings().SuffixType == 0, manual};
  if (const FileResult possible = checkTarget(m_state.world.files, wanted.target); !possible.ok()) {
    m_state.tell("msgNotSavedReason", kSaveTitle, kSaveFailure + possible.error);
    leftUnsaved();
    return;
  }
  const auto replaced = filesReplacedBy(m_state.world.files, wanted.target);
  if (replaced.empty()) {
    start(wanted);
    return;
  }
  m_state.view().ask({"msgOverwrite", kSaveTitle,
                      "These files exist already. Replace them?\n" + namesOf(replaced)},
                     [this, wanted, command](bool yes) {
                       if (yes && m_state.instrument().allowed(command)) {
                         start(wanted);
                       } else {
                         leftUnsaved();
                       }
                     });
}

void TakeSaving::saveAutomatically(const std::string& folder) {
  const Take& take = m_state.take;
  start({{folder.empty() ? take.folder : folder, take.name},
         m_state.settings().SuffixType == 0,
         false,
         take.recordMode == kAutoSaveMode});
}

/// The sound may still be on its way to its spool; the writing begins once it is complete.
void TakeSaving::start(Wanted wanted) {
  m_wanted = std::move(wanted);
  m_state.instrument().setOperation(Operation::Saving);
  m_state.view().refreshTransport();
}

void TakeSaving::begin() {
  Take& take = m_state.take;
  const bool fromSpool = take.sound.kind == TakeSound::Kind::Spool;
  if (const auto sound = m_state.world.spool.recorded(); sound && fromSpool) take.sound = *sound;
  m_save = std::make_unique<SaveSession>(m_state.world.files, take, m_wanted->target, header());
}

HeaderSettings TakeSaving::header() {
  const ProgramSettings settings = m_state.instrument().liveSettings();
  return {settings.TimeDateEnable, settings.ClockType, settings.DateType};
}

void TakeSaving::poll() {
  if (!m_wanted) return;
  if (!m_save) {
    if (!m_state.world.spool.settled()) return;
    begin();
  }
  for (int slice = 0; slice < kSlicesAPoll; ++slice) {
    if (m_save->step() != SaveSession::State::Saving) {
      finish();
      return;
    }
  }
  m_state.view().showBar({BarFace::Work, {}, m_save->progress() * BarGeometry::kWidth});
}

void TakeSaving::finish() {
  const bool done = m_save->state() == SaveSession::State::Done;
  m_state.instrument().setOperation(Operation::None);
  const auto over = std::exchange(m_over, {});
  if (done) {
    saved();
  } else {
    const std::string reason = m_save->failure();
    m_save.reset();
    m_wanted.reset();
    m_state.offersOwnName = m_state.offersOwnName || m_state.saveMode() != kManualMode;
    m_state.savedByName = true;
    if (!over) failed(reason);
  }
  m_events.written();
  m_state.view().refreshTransport();
  if (over) over(done);
}

void TakeSaving::saved() {
  ProgramSettings& settings = m_state.settings();
  Take& take = m_state.take;
  const bool wasSpool = take.sound.kind == TakeSound::Kind::Spool;
  const SavedFiles files = m_save->saved();
  const Wanted wanted = *m_wanted;
  m_save.reset();
  m_wanted.reset();
  m_asking = false;
  noteSaved(take, files);
  if (wasSpool) openTakeSound(m_state, take);  // the spool goes with the journal
  if (m_state.journal) m_state.journal->remove();
  m_state.journal.reset();
  m_state.setUnsaved(false);
  if (wanted.manual) settings.SavePath = take.folder;
  settings.LoadPath = take.folder;
  if (wanted.numbered && settings.SuffixNum < INT16_MAX) ++settings.SuffixNum;
  m_state.base = take.folder + take.name;
  m_state.view().showLoadedFile(take.name, m_state.base + (wanted.autoSave ? "" : ".qvd"));
}

/// From now on the recording is saved as in mode 1: by name and folder.
void TakeSaving::failed(const std::string& reason) {
  m_asking = true;
  m_state.tell("msgNotSavedReason", kSaveTitle, reason, [this] {
    if (m_state.take.unsaved && m_state.instrument().allowed(Command::Save)) {
      chooseRecordingName();
    } else {
      leftUnsaved();
    }
  });
}

void TakeSaving::leftUnsaved() {
  if (std::exchange(m_asking, false)) m_events.answered();
}

}  // namespace qv3
