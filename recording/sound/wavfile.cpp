#include "recording/sound/wavfile.h"

#include <algorithm>
#include <utility>

#include "recording/sound/pcmreader.h"
#include "recording/sound/wavlayout.h"

namespace qv3 {

SoundResult WavFile::openFile(const std::string& path, SoundType type) {
  if (m_sound) return SoundResult::InUse;
  const bool timing = type == SoundType::MpegVideo && m_parts.files.same(path, m_parts.timingTrack);
  OpenResult opened = openSound(m_parts.files, m_parts.backend, path, type, timing);
  if (opened.result == SoundResult::Done) open(std::move(opened.sound));
  return opened.result;
}

SoundResult WavFile::openNew() {
  if (m_sound) return SoundResult::InUse;
  m_lastSpool.reset();
  m_lastFailure.clear();
  open({});
  return SoundResult::Done;
}

void WavFile::open(OpenSound sound) {
  m_sound = std::move(sound);
  m_timeFormat = TimeFormat::Milliseconds;
  m_state = State::Stopped;
  m_place = 0;
}

void WavFile::close() {
  if (!m_sound) return;
  halt(m_parts.now());
  // A run that still takes sound goes on without the device and ends by itself.
  if (m_capture) m_lastCapture = std::move(m_capture);
  if (m_spool) {
    m_lastSpool = m_spool->where();
    m_lastFailure = m_spool->failure();
    m_spool.reset();
  }
  m_sound.reset();
}

SoundType WavFile::type() const {
  return m_sound ? m_sound->type : SoundType::WaveAudio;
}

SoundResult WavFile::setTimeFormat(TimeFormat format) {
  if (!m_sound) return SoundResult::Closed;
  if (format == TimeFormat::Bytes && type() == SoundType::MpegVideo) {
    return SoundResult::WrongTimeFormat;
  }
  m_timeFormat = format;
  return SoundResult::Done;
}

WaveFormat WavFile::waveFormat() const {
  return m_sound ? m_sound->format : WaveFormat{};
}

SoundResult WavFile::setWaveFormat(const WaveFormat& format) {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  if (type() == SoundType::MpegVideo) return SoundResult::NotSupported;
  const bool fresh = m_sound->kind == OpenSound::Kind::New && m_state == State::Stopped &&
                     lengthFrames(m_parts.now()) == 0;
  if (!fresh) return SoundResult::WrongOrder;
  m_sound->format = format;
  m_place = 0;
  if (m_capture) m_capture->close();
  if (m_spool) m_spool->restart(format);
  return SoundResult::Done;
}

SoundResult WavFile::record() {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  if (type() == SoundType::MpegVideo) return SoundResult::NotSupported;
  const bool possible = m_sound->kind == OpenSound::Kind::New && m_state == State::Stopped;
  return possible ? startRecording(m_parts.now()) : SoundResult::WrongOrder;
}

SoundResult WavFile::startRecording(SoundTime now) {
  if (!makeSpool()) return SoundResult::CannotWrite;
  if (m_capture) m_capture->close();
  m_capture = std::make_shared<CaptureRun>(m_spool, now);
  m_parts.backend.capture(m_capture);
  m_state = State::Recording;
  return SoundResult::Done;
}

bool WavFile::makeSpool() {
  if (m_spool) return m_spool->failure().empty();
  const std::string path = m_parts.nextSpool();
  std::shared_ptr<ByteFile> file = m_parts.files.create(path);
  if (!file) return false;
  auto spool = std::make_shared<Spool>(path, std::move(file), m_sound->format);
  if (!spool->failure().empty()) {
    m_parts.files.remove(path);
    return false;
  }
  m_spool = std::move(spool);
  return true;
}

SoundResult WavFile::play(std::optional<std::int64_t> from, std::optional<std::int64_t> to) {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  if (m_state == State::Recording || m_state == State::RecordingPaused) {
    return SoundResult::WrongOrder;
  }
  const SoundTime now = m_parts.now();
  if ((from && isBeyond(*from, now)) || (to && isBeyond(*to, now))) return SoundResult::OutOfRange;
  const std::int64_t start = from ? toFrames(*from, now) : placeFrames(now);
  std::optional<std::int64_t> end;
  if (m_sound->kind != OpenSound::Kind::TimingTrack) end = lengthFrames(now);
  if (to) end = toFrames(*to, now);
  if (end && start > *end) return SoundResult::OutOfRange;
  if (m_state == State::Playing && !from) {
    m_playback->setEnd(end);
  } else {
    startPlaying(start, end, now);
  }
  return SoundResult::Done;
}

void WavFile::startPlaying(std::int64_t from, std::optional<std::int64_t> end, SoundTime now) {
  halt(now);
  m_place = from;
  if (end && from >= *end) return;
  m_playback = std::make_shared<PlaybackRun>(reader(), from, end, now);
  if (m_sound->kind != OpenSound::Kind::TimingTrack) m_parts.backend.play(m_playback);
  m_state = State::Playing;
}

SoundResult WavFile::pause() {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  if (m_state == State::Stopped) return SoundResult::WrongOrder;
  if (m_state == State::Playing) {
    m_pausedEnd = m_playback->end();
    halt(m_parts.now());
    m_state = State::Paused;
  } else if (m_state == State::Recording) {
    halt(m_parts.now());
    m_state = State::RecordingPaused;
  }
  return SoundResult::Done;
}

SoundResult WavFile::resume() {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  if (m_state == State::Stopped) return SoundResult::WrongOrder;
  const SoundTime now = m_parts.now();
  if (m_state == State::Paused) startPlaying(m_place, m_pausedEnd, now);
  if (m_state == State::RecordingPaused) return startRecording(now);
  return SoundResult::Done;
}

SoundResult WavFile::stop() {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  halt(m_parts.now());
  return SoundResult::Done;
}

SoundResult WavFile::seek(std::int64_t to) {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  const SoundTime now = m_parts.now();
  if (isBeyond(to, now)) return SoundResult::OutOfRange;
  return seekFrames(toFrames(to, now), now);
}

SoundResult WavFile::seekToEnd() {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  const SoundTime now = m_parts.now();
  halt(now);
  return seekFrames(lengthFrames(now), now);
}

SoundResult WavFile::seekFrames(std::int64_t frame, SoundTime now) {
  halt(now);
  m_place = frame;
  return SoundResult::Done;
}

/// Ends what runs and stands where it was.
void WavFile::halt(SoundTime now) {
  if (m_state == State::Playing) {
    m_place = m_playback->position(now);
    m_playback->cancel();
    m_playback.reset();
  } else if (m_state == State::Recording) {
    m_place = m_capture->stop(now) - cutFrames();
  }
  if (m_state == State::Playing || m_state == State::Recording) m_parts.backend.wake();
  m_state = State::Stopped;
}

SoundResult WavFile::removeRange(std::optional<std::int64_t> from, std::optional<std::int64_t> to) {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return refused;
  if (type() == SoundType::MpegVideo) return SoundResult::NotSupported;
  if (m_sound->kind == OpenSound::Kind::File || m_state != State::Stopped) {
    return SoundResult::WrongOrder;
  }
  const SoundTime now = m_parts.now();
  if ((from && isBeyond(*from, now)) || (to && isBeyond(*to, now))) return SoundResult::OutOfRange;
  const std::int64_t begin = from ? toFrames(*from, now) : m_place;
  const std::int64_t end = to ? toFrames(*to, now) : lengthFrames(now);
  if (begin > end) return SoundResult::OutOfRange;
  if (begin == end) return SoundResult::Done;
  const std::uint64_t block = m_sound->format.blockSize();
  const std::uint64_t first = m_spool->begin() + static_cast<std::uint64_t>(begin) * block;
  const std::uint64_t behind = first + static_cast<std::uint64_t>(end - begin) * block;
  // Where everything stays at its place in the file late sound may still come.
  if (m_capture && !m_spool->cutsInPlace(first, behind)) m_capture->close();
  m_spool->remove(first, behind);
  if (m_place > begin) m_place = std::max(m_place - (end - begin), begin);
  return SoundResult::Done;
}

SoundResult WavFile::save(const std::string& path) {
  const SaveStart started = startSave(path);
  if (started.result != SoundResult::Done) return started.result;
  while (started.save->step() == SoundSave::State::Saving) {
  }
  return started.save->state() == SoundSave::State::Done ? SoundResult::Done
                                                         : SoundResult::CannotWrite;
}

SoundDevice::SaveStart WavFile::startSave(const std::string& path) {
  if (const SoundResult refused = enter(); refused != SoundResult::Done) return {refused, nullptr};
  if (type() == SoundType::MpegVideo) return {SoundResult::NotSupported, nullptr};
  if (m_state != State::Stopped) return {SoundResult::WrongOrder, nullptr};
  const std::string temporary = m_parts.files.nameBeside(path);
  const std::size_t slash = path.find_last_of('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  if (m_parts.files.kind(folder) != PathKind::Folder) return {SoundResult::NotFound, nullptr};
  std::unique_ptr<ByteFile> target = m_parts.files.create(temporary);
  if (!target) return {SoundResult::CannotWrite, nullptr};
  return {SoundResult::Done, std::make_unique<SaveJob>(m_parts.files, saveSource(),
                                                       std::move(target), temporary, path)};
}

/// What is saved: recorded sound gets a header of its own, an opened file is copied.
SaveSource WavFile::saveSource() {
  if (m_sound->kind == OpenSound::Kind::File && !m_sound->isSpool) {
    return {{}, m_sound->file, 0, m_sound->file->size(), 0};
  }
  SaveSource source;
  if (m_sound->isSpool) {
    source.file = m_sound->file;
    source.offset = m_sound->dataOffset;
    source.length = m_sound->dataSize;
  } else if (m_spool) {
    const SpoolPlace place = m_spool->where();
    source.file = m_spool->file();
    source.offset = place.offset;
    source.length = place.length;
  }
  source.header = pcmHeader(m_sound->format, source.length);
  source.silence = silentByte(m_sound->format);
  return source;
}

SoundMode WavFile::mode() {
  if (enter() != SoundResult::Done) return SoundMode::Stopped;
  switch (m_state) {
    case State::Stopped:
      return SoundMode::Stopped;
    case State::Playing:
      return SoundMode::Playing;
    case State::Recording:
      return SoundMode::Recording;
    case State::Paused:
    case State::RecordingPaused:
      return SoundMode::Paused;
  }
  return SoundMode::Stopped;
}

std::int64_t WavFile::length() {
  if (enter() != SoundResult::Done) return 0;
  return units().fromFrames(lengthFrames(m_parts.now()), m_timeFormat);
}

std::optional<std::int64_t> WavFile::position() {
  if (enter() != SoundResult::Done) return std::nullopt;
  return units().fromFrames(placeFrames(m_parts.now()), m_timeFormat);
}

std::optional<SpoolPlace> WavFile::spool() const {
  return m_spool ? m_spool->where() : m_lastSpool;
}

bool WavFile::isComplete() const {
  const std::shared_ptr<CaptureRun>& run = m_capture ? m_capture : m_lastCapture;
  return !run || !run->wanted(m_parts.now());
}

std::string WavFile::failure() const {
  return m_spool ? m_spool->failure() : m_lastFailure;
}

/// Says whether anything is open, and notices a playback that has come to its end.
SoundResult WavFile::enter() {
  if (!m_sound) return SoundResult::Closed;
  const SoundTime now = m_parts.now();
  if (m_state != State::Playing || !m_playback->atEnd(now)) return SoundResult::Done;
  m_place = m_playback->position(now);
  m_playback.reset();
  m_state = State::Stopped;
  return SoundResult::Done;
}

SoundUnits WavFile::units() const {
  return {m_sound->format.samplesPerSecond, m_sound->format.blockSize()};
}

/// Frames that were cut off the front of the recording.
std::int64_t WavFile::cutFrames() const {
  return static_cast<std::int64_t>(m_spool->begin() / m_sound->format.blockSize());
}

std::int64_t WavFile::lengthFrames(SoundTime now) {
  if (m_sound->reader) return m_sound->reader->frames();
  if (!m_spool) return 0;
  if (m_state == State::Recording) return placeFrames(now);
  return static_cast<std::int64_t>(m_spool->where().length / m_sound->format.blockSize());
}

std::int64_t WavFile::placeFrames(SoundTime now) {
  if (m_state == State::Playing) return m_playback->position(now);
  if (m_state == State::Recording) return m_capture->position(now) - cutFrames();
  return m_place;
}

bool WavFile::isBeyond(std::int64_t position, SoundTime now) {
  if (position < 0) return true;
  if (m_sound->kind == OpenSound::Kind::TimingTrack) return false;
  return position > units().fromFrames(lengthFrames(now), m_timeFormat);
}

std::int64_t WavFile::toFrames(std::int64_t position, SoundTime now) {
  const std::int64_t frame = units().toFrames(position, m_timeFormat);
  // A length in milliseconds may be rounded up.
  if (m_sound->kind == OpenSound::Kind::TimingTrack) return frame;
  return std::min(frame, lengthFrames(now));
}

std::shared_ptr<SoundReader> WavFile::reader() {
  if (m_sound->reader) return m_sound->reader;
  const SpoolPlace place = m_spool->where();
  const auto frames = static_cast<std::int64_t>(place.length / m_sound->format.blockSize());
  return std::make_shared<PcmReader>(m_spool->file(), place.offset, m_sound->format, frames);
}

}  // namespace qv3
