#include "recording/savesession.h"

#include <algorithm>
#include <utility>

#include "recording/setaside.h"
#include "recording/wavheader.h"

namespace qv3 {
namespace {

constexpr std::size_t kRecordsASlice = 4096;

}  // namespace

SaveSession::SaveSession(FileTasks& files, const Take& take, SaveTarget target,
                         const HeaderSettings& header)
    : m_files(files), m_take(take), m_target(std::move(target)), m_header(header) {}

SaveSession::State SaveSession::step() {
  if (m_state != State::Saving) return m_state;
  if (m_phase != Phase::Settling && anyFailed()) return m_state;
  switch (m_phase) {
    case Phase::Opening:
      open();
      break;
    case Phase::Writing:
      writeRecords();
      break;
    case Phase::Closing:
      awaitFiles();
      break;
    case Phase::Settling:
      // Both files stand under their names; a folder that cannot be synced takes nothing from that.
      if (m_folderSync->state() != FileWork::State::Busy) m_state = State::Done;
      break;
  }
  return m_state;
}

void SaveSession::open() {
  FileResult result = checkTarget(m_files, m_target);
  const std::string folder = m_target.fileFolder();
  if (result.ok()) result = m_files.makeFolder(folder);
  if (!result.ok()) return fail(result.error);
  m_saved = {folder, m_target.fileName(), {}};
  m_data = m_files.createTemporary(folder);
  if (m_take.sound.kind != TakeSound::Kind::None) result = openSound();
  if (!result.ok()) return fail(result.error);
  m_phase = Phase::Writing;
}

FileResult SaveSession::openSound() {
  m_sound = m_files.createTemporary(m_saved.folder);
  const bool mp3 = m_take.sound.kind == TakeSound::Kind::Mp3;
  m_saved.sound.kind = mp3 ? TakeSound::Kind::Mp3 : TakeSound::Kind::Wav;
  m_saved.sound.path = m_target.basePath() + (mp3 ? ".mp3" : ".wav");
  const bool spool = m_take.sound.kind == TakeSound::Kind::Spool;
  const FileResult result = spool ? startSpoolCopy() : startFileCopy();
  m_sound->finish();
  return result;
}

/// Sound that did not all reach the spool is saved as far as it goes: the data is worth more.
FileResult SaveSession::startSpoolCopy() {
  const TakeSound& spool = m_take.sound;
  const std::uint64_t size = m_files.size(spool.path).value_or(0);
  const std::uint64_t there = size > spool.offset ? size - spool.offset : 0;
  const std::uint64_t length = std::min({spool.length, there, kLongestWavData});
  const std::uint64_t padded = paddedSoundLength(m_take.records, length);
  m_sound->write(pcmHeader(recordedFormat(), padded));
  m_sound->copyFrom(spool.path, spool.offset, length);
  m_sound->writeZeros(padded - length);
  m_soundBytes = kPcmHeaderSize + padded;
  return {};
}

FileResult SaveSession::startFileCopy() {
  const auto size = m_files.size(m_take.sound.path);
  if (!size) return {"its sound is gone: " + m_take.sound.path};
  m_sound->copyFrom(m_take.sound.path, 0, *size);
  m_soundBytes = *size;
  return {};
}

void SaveSession::writeRecords() {
  if (m_data->state() != FileWork::State::Ready) return;
  const std::size_t end = std::min(m_take.records.count(), m_recordsWritten + kRecordsASlice);
  std::vector<std::uint8_t> bytes;
  bytes.reserve((end - m_recordsWritten) * kRecordSize);
  while (m_recordsWritten < end) {
    const RecordBytes record =
        fileRecord(m_take.records, ++m_recordsWritten, m_take.start, m_header);
    bytes.insert(bytes.end(), record.begin(), record.end());
  }
  m_data->write(std::move(bytes));
  if (m_recordsWritten < m_take.records.count()) return;
  m_data->finish();
  m_phase = Phase::Closing;
}

void SaveSession::awaitFiles() {
  const auto finished = [](const auto& file) {
    return !file || file->state() == FileWork::State::Finished;
  };
  if (finished(m_data) && finished(m_sound)) exchange();
}

void SaveSession::exchange() {
  SetAside aside(m_files);
  FileResult result;
  for (const std::string& path : filesReplacedBy(m_files, m_target)) {
    if (result.ok()) result = aside.add(path);
  }
  if (result.ok()) result = moveNewFiles();
  if (!result.ok()) {
    aside.undo();
    return fail(result.error);
  }
  m_folderSync = m_files.syncFolder(m_saved.folder);
  m_phase = Phase::Settling;
}

FileResult SaveSession::moveNewFiles() {
  FileResult result;
  if (m_sound) result = m_sound->moveTo(m_saved.sound.path);
  if (!result.ok()) return result;
  result = m_data->moveTo(m_target.basePath() + ".qvd");
  if (!result.ok() && m_sound) static_cast<void>(m_files.remove(m_saved.sound.path).ok());
  return result;
}

bool SaveSession::anyFailed() {
  for (const auto* file : {&m_data, &m_sound}) {
    if (*file && (*file)->state() == FileWork::State::Failed) {
      fail((*file)->error());
      return true;
    }
  }
  return false;
}

void SaveSession::fail(const std::string& reason) {
  m_data.reset();
  m_sound.reset();
  m_failure = kSaveFailure + reason;
  m_state = State::Failed;
}

double SaveSession::progress() const {
  if (m_state == State::Done) return 1;
  const auto written = (m_data ? m_data->written() : 0) + (m_sound ? m_sound->written() : 0);
  const std::uint64_t all = m_take.records.count() * kRecordSize + m_soundBytes;
  return all == 0 ? 0 : static_cast<double>(written) / static_cast<double>(all);
}

}  // namespace qv3
