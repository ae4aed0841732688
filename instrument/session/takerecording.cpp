#include "instrument/session/takerecording.h"

#include <chrono>
#include <utility>

#include "recording/naming.h"
#include "recording/transportstate.h"

namespace qv3 {
namespace {

constexpr Instant kDiskPeriod = std::chrono::seconds{5};

}  // namespace

TakeRecording::TakeRecording(SessionState& state, std::function<void(bool)> ended)
    : m_state(state),
      m_ended(std::move(ended)),
      m_control(state.instrument(), state.world.media, state.world.timingTrack, *this) {}

void TakeRecording::cmdRecord() {
  if (!m_state.instrument().allowed(Command::Record)) return;
  m_state.confirmDiscard(Command::Record, [this] { begin(); });
}

void TakeRecording::begin() {
  m_disk = {};
  if (tellDisk() == DiskWatch::Verdict::Full) return;
  m_state.Flush_RecBuffer();
  prepareTake();
  m_control.start(m_state.world.now());
  m_state.take.withSound = m_state.instrument().recorder().withSound();
  m_state.view().refreshTransport();
}

/// What the recording will be saved as is settled when Record is pressed.
void TakeRecording::prepareTake() {
  const ProgramSettings& settings = m_state.settings();
  Take take;
  take.recordMode = settings.RecordingMode;
  take.folder = settings.SavePath;
  take.name = recordingName(settings.SavePrefix, settings.SuffixType, settings.SuffixNum,
                            formatFileStamp(m_state.world.wall()));
  const bool named = take.recordMode == kAutoSaveMode;
  m_state.view().showLoadedFile(named ? take.name : std::string(kBuffer),
                                named ? "" : std::string(kBuffer));
  m_state.setTake(std::move(take));
}

void TakeRecording::giveUp(const Now& now) {
  m_control.giveUp(now);
  m_feed.reset();
  m_state.setUnsaved(!m_state.instrument().recorder().records().empty());
}

void TakeRecording::poll(const Now& now) {
  m_control.poll(now, m_state.world.wall());
  watchDisk(now);
  watchSound(now);
}

/// Sound that can no longer be written ends the recording as Stop does, with what was kept so far.
void TakeRecording::watchSound(const Now& now) {
  if (m_state.instrument().operation() != Operation::Recording || !m_state.take.withSound) return;
  const std::string reason = m_state.world.spool.failure();
  if (reason.empty()) return;
  m_state.tell("msgNoSound", "Recording", "The sound cannot be recorded: " + reason);
  stop(now);
}

void TakeRecording::received(const Now& now) {
  if (m_feed) m_feed->update(m_state.instrument().recorder().records());
  m_control.received(now);
}

void TakeRecording::watchDisk(const Now& now) {
  if (m_state.instrument().operation() != Operation::Recording) return;
  if (now.steady - m_diskLooked < kDiskPeriod) return;
  m_diskLooked = now.steady;
  if (tellDisk() == DiskWatch::Verdict::Full) stop(now);
}

DiskWatch::Verdict TakeRecording::tellDisk() {
  const auto left = secondsLeft();
  const DiskWatch::Verdict verdict = m_disk.look(left);
  if (verdict != DiskWatch::Verdict::Enough) {
    m_state.tell("msgDisk", "Recording", diskMessage(verdict, left.value_or(0)));
  }
  return verdict;
}

std::optional<std::int64_t> TakeRecording::secondsLeft() const {
  const SessionWorld& world = m_state.world;
  const ProgramSettings& settings = m_state.settings();
  const auto sound = m_state.world.spool.recorded();
  const std::uint64_t taken = m_state.instrument().recorder().records().count() * kRecordSize +
                              (m_state.take.withSound && sound ? sound->length : 0);
  return recordingSecondsLeft(world.disk.room(world.stateFolder),
                              world.disk.room(settings.SavePath), taken, settings.AudioEnable);
}

void TakeRecording::dataStarted(const SessionStart& start) {
  m_state.take.start = start;
  m_state.journal = m_state.world.newJournal();
  m_feed.emplace(*m_state.journal);
  const auto sound = m_state.world.spool.recorded();
  const std::string spool =
      m_state.take.withSound && sound ? sound->path.substr(sound->path.rfind('/') + 1) : "";
  m_feed->begin(journalHeader(m_state.take, spool));
  m_state.view().showBar({BarFace::Recording, {}, {}});
  m_state.view().refreshTransport();
}

void TakeRecording::soundRefused(const std::string& reason) {
  m_state.tell("msgNoSound", "Recording", "The sound cannot be recorded: " + reason);
}

void TakeRecording::recordingEnded(bool kept) {
  if (m_feed) m_feed->update(m_state.instrument().recorder().records());
  m_feed.reset();
  Take& take = m_state.take;
  take.records = m_state.instrument().takeRecords();
  take.unsaved = kept;
  take.loaded = kept;
  if (m_state.journal) m_state.journal->finish();
  if (const auto sound = m_state.world.spool.recorded(); sound && take.withSound) {
    take.sound = *sound;
  }
  m_state.setUnsaved(kept);
  if (!kept) m_state.Flush_RecBuffer();
  m_ended(kept);
}

}  // namespace qv3
