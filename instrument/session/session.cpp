#include "instrument/session/session.h"

#include <utility>

#include "instrument/session/takesound.h"
#include "recording/recorder.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;

/// What a session has to end before the program may.
bool underWay(Operation operation) {
  switch (operation) {
    case Operation::None:
    case Operation::Starting:
    case Operation::Probing:
    case Operation::Closing:
      return false;
    default:
      return true;
  }
}

}  // namespace

Session::Session(SessionWorld world)
    : m_state(std::move(world)),
      m_recording(m_state, [this](bool kept) { recordingEnded(kept); }),
      m_playback(m_state, [this] { settleExit(); }),
      m_loading(m_state,
                [this](const OpenedSound& sound) {
                  m_playback.takeReady(sound.unitsPerSecond, sound.audible);
                }),
      m_saving(m_state, {[this] { settleExit(); }, [this] { m_playback.showRange(); }}),
      m_test(m_state, [this] { m_playback.takeGone(); }) {}

void Session::cmdStop(const Now& now) {
  if (!m_state.instrument().allowed(Command::Stop)) return;
  if (m_state.instrument().programState() == 3) {
    m_recording.stop(now);
  } else {
    stopPlayback(now);
  }
  m_state.view().refreshTransport();
}

/// State 2 is a playback or a test.
void Session::stopPlayback(const Now& now) {
  m_playback.stop(now);
  m_test.stop(now);
}

void Session::cmdLoop() {
  if (!m_state.instrument().allowed(Command::Loop)) return;
  m_state.settings().PlayLoopEnable = !m_state.settings().PlayLoopEnable;
  m_state.view().refreshTransport();
}

void Session::recordingEnded(bool kept) {
  if (!kept) {
    m_playback.takeGone();
    settleExit();
    return;
  }
  const bool sound = m_state.take.withSound;
  m_playback.takeReady(sound ? kSoundBytesPerSecond : 1000, true);
  m_state.showTotalTime();
  finishRecording();
  m_state.view().refreshTransport();
  settleExit();
}

/// By the record mode: written at once, prepared to be written, or left to the user.
void Session::finishRecording() {
  const Take& take = m_state.take;
  if (take.recordMode == kAutoNameMode) {
    m_state.view().showLoadedFile(std::string(kBuffer), take.folder + take.name);
  } else if (take.recordMode == kAutoSaveMode) {
    m_saving.saveAutomatically();
  }
}

void Session::setAudio(bool on) {
  if (m_state.settings().AudioEnable == on) return;
  if (!m_state.instrument().allowed(Command::RecordingSetup)) return;
  m_state.confirmDiscard(Command::RecordingSetup, [this, on] {
    m_state.Flush_RecBuffer();
    m_playback.takeGone();
    m_state.settings().AudioEnable = on;
    if (!on) m_loading.checkTimingTrack();
    m_state.view().refreshTransport();
  });
}

void Session::panelHidden() {
  m_state.world.media.send("close WavFile");
  if (m_state.take.unsaved) return;
  m_state.setTake({});
  m_state.base.clear();
  m_playback.takeGone();
  m_state.showNothingLoaded();
}

void Session::recover(Take take, std::unique_ptr<JournalSink> journal) {
  m_state.setTake(std::move(take));
  m_state.journal = std::move(journal);
  m_state.savedByName = true;
  m_state.offersOwnName = true;
  const OpenedSound sound = openTakeSound(m_state, m_state.take);
  m_playback.takeReady(sound.unitsPerSecond, sound.audible);
  m_state.view().showLoadedFile(std::string(kBuffer), m_state.take.name);
  m_state.showTotalTime();
  m_state.view().refreshTransport();
}

void Session::poll(const Now& now) {
  m_recording.poll(now);
  m_loading.poll();
  m_saving.poll();
  m_playback.poll(now);
  m_test.poll(now);
  settleExit();
}

std::optional<milliseconds> Session::pollPeriod() const {
  switch (m_state.world.instrument.operation()) {
    case Operation::LeadIn:
    case Operation::Stopping:
    case Operation::Playing:
      return milliseconds{4};
    case Operation::Testing:
      return milliseconds{2};
    case Operation::Loading:
    case Operation::Saving:
      return milliseconds{1};
    case Operation::Paused:
      return milliseconds{40};
    case Operation::Recording:
      return milliseconds{500};
    default:
      return std::nullopt;
  }
}

TransportState Session::transport() const {
  const Instrument& instrument = m_state.world.instrument;
  const ProgramSettings settings = instrument.liveSettings();
  TransportInputs inputs;
  inputs.programState = instrument.programState();
  if (instrument.operation() == Operation::Playing) inputs.play = PlayFlag::Playing;
  if (instrument.operation() == Operation::Paused) inputs.play = PlayFlag::Paused;
  inputs.unsaved = m_state.take.unsaved;
  inputs.RecordingMode = settings.RecordingMode;
  inputs.saveMode = m_state.saveMode();
  inputs.SavePath = settings.SavePath;
  inputs.SavePrefix = settings.SavePrefix;
  inputs.SuffixType = settings.SuffixType;
  inputs.PlayLoopEnable = settings.PlayLoopEnable;
  const auto allowed = [&instrument](Command command) { return instrument.allowed(command); };
  inputs.allowed = {allowed(Command::Record),       allowed(Command::Stop),
                    allowed(Command::Play),         allowed(Command::Skip),
                    allowed(Command::Loop),         allowed(Command::Load),
                    allowed(Command::Save),         allowed(Command::SaveFileAs),
                    allowed(Command::PositionLeft), allowed(Command::PositionRight)};
  return transportState(inputs);
}

void Session::prepareExit(std::function<void(bool)> go) {
  m_loading.giveUp();
  const Operation operation = m_state.instrument().operation();
  if (operation == Operation::Saving || operation == Operation::Stopping) {
    m_exit = [this, go = std::move(go)] { askAtExit(go); };
    return;
  }
  askAtExit(std::move(go));
}

/// Everything goes on while the question stands, and may come to its end by itself.
void Session::askAtExit(std::function<void(bool)> go) {
  const Operation operation = m_state.instrument().operation();
  const bool autoSaved =
      operation == Operation::Recording && m_state.take.recordMode == kAutoSaveMode;
  const bool atStake = operation == Operation::Recording || m_state.take.unsaved;
  if (autoSaved || !atStake || !m_state.settings().RecPromptEnable) {
    m_state.noteDiscardAsked(false);
    endUnderWay(std::move(go));
    return;
  }
  m_state.view().ask({"msgExit", "Warning", "Recording not saved, Exit?"},
                     [this, go = std::move(go)](bool yes) {
                       if (!yes) {
                         go(false);
                         return;
                       }
                       m_state.noteDiscardAsked(true);
                       endUnderWay(go);
                     });
}

/// Ends what is going on; the exit goes on when that is over.
void Session::endUnderWay(std::function<void(bool)> go) {
  const Now now = m_state.world.now();
  const Instrument& instrument = m_state.instrument();
  if (instrument.operation() == Operation::Recording && m_state.take.recordMode == kAutoSaveMode) {
    // What could not be saved after all cancels the exit.
    m_exit = [this, go = std::move(go)] { go(!m_state.take.unsaved); };
    m_recording.stop(now);
    return;
  }
  if (instrument.programState() == 3) {
    m_recording.giveUp(now);
  } else if (instrument.programState() == 2) {
    stopPlayback(now);
  }
  m_state.dropAtExit();
  m_exit = [go = std::move(go)] { go(true); };
  settleExit();
}

void Session::settleExit() {
  if (!m_exit || underWay(m_state.instrument().operation()) || m_saving.asking()) return;
  const auto exit = std::exchange(m_exit, {});
  exit();
}

void Session::prepareSilentExit(std::function<void()> go) {
  m_loading.giveUp();
  const Now now = m_state.world.now();
  const Operation operation = m_state.instrument().operation();
  if (m_state.instrument().programState() == 2) stopPlayback(now);
  if (operation == Operation::LeadIn) m_recording.giveUp(now);
  if (operation == Operation::Recording) m_recording.stop(now);
  m_exit = [this, go = std::move(go)] {
    if (!m_state.take.unsaved) {
      go();
      return;
    }
    m_saving.whenOver([this, go](bool saved) {
      if (saved) {
        go();
        return;
      }
      m_saving.whenOver([go](bool) { go(); });
      m_saving.saveAutomatically(m_state.world.stateFolder);
    });
    m_saving.saveAutomatically();
  };
  settleExit();
}

}  // namespace qv3
