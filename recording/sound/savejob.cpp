#include "recording/sound/savejob.h"

#include <algorithm>
#include <utility>

namespace qv3 {
namespace {

constexpr std::uint64_t kPiece = 1U << 20;

}  // namespace

SaveJob::SaveJob(SoundFiles& files, SaveSource source, std::unique_ptr<ByteFile> target,
                 std::string temporary, std::string path)
    : m_files(files),
      m_source(std::move(source)),
      m_target(std::move(target)),
      m_temporary(std::move(temporary)),
      m_path(std::move(path)) {}

SaveJob::~SaveJob() {
  if (m_state == State::Saving) fail({});
}

SoundSave::State SaveJob::step() {
  if (m_state != State::Saving) return m_state;
  if (m_copied == 0 && !put(0, m_source.header)) return m_state;
  if (m_copied < m_source.length && !copyPiece()) return m_state;
  if (m_copied == m_source.length) finish();
  return m_state;
}

double SaveJob::progress() const {
  if (m_source.length == 0) return m_state == State::Done ? 1 : 0;
  return static_cast<double>(m_copied) / static_cast<double>(m_source.length);
}

bool SaveJob::put(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  if (m_target->writeAt(offset, bytes)) return true;
  fail(m_target->error());
  return false;
}

bool SaveJob::copyPiece() {
  std::vector<std::uint8_t> piece(std::min(kPiece, m_source.length - m_copied));
  const std::size_t got = m_source.file->readAt(m_source.offset + m_copied, piece);
  std::fill(piece.begin() + static_cast<std::ptrdiff_t>(got), piece.end(), m_source.silence);
  if (!put(m_source.header.size() + m_copied, piece)) return false;
  m_copied += piece.size();
  return true;
}

void SaveJob::finish() {
  m_target.reset();
  if (m_files.rename(m_temporary, m_path)) {
    m_state = State::Done;
  } else {
    fail("the file cannot be replaced");
  }
}

void SaveJob::fail(std::string error) {
  m_target.reset();
  m_files.remove(m_temporary);
  m_error = std::move(error);
  m_state = State::Failed;
}

}  // namespace qv3
