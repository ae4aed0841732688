#include "recording/sessionsound.h"

#include <cmath>

namespace qv3 {

void SessionSound::attach(std::int32_t unitsPerSecond, bool audible) {
  m_units = unitsPerSecond;
  m_device = audible;
  m_position = 0;
  m_ownMode = Mode::Stopped;
}

std::int64_t SessionSound::positionOf(std::int32_t milliseconds) const {
  return std::llrint(static_cast<double>(milliseconds) * m_units / 1000.0);
}

void SessionSound::seek(std::int64_t position, Instant now) {
  const bool refused = m_device && !send("seek WavFile to " + std::to_string(position));
  m_position = position;
  m_ownMode = Mode::Stopped;
  m_ownSince = now;
  if (refused) takeOver();
}

void SessionSound::play(Instant now) {
  m_ownMode = Mode::Playing;
  m_ownSince = now;
  if (m_device && !send("play WavFile")) takeOver();
}

void SessionSound::playFrom(std::int64_t position, Instant now) {
  m_position = position;
  m_ownMode = Mode::Playing;
  m_ownSince = now;
  if (m_device && !send("play WavFile from " + std::to_string(position))) takeOver();
}

void SessionSound::pause(Instant now) {
  if (m_device) {
    send("pause WavFile");
  } else {
    m_position = ownPosition(now);
  }
  m_ownMode = Mode::Paused;
}

void SessionSound::stop(Instant now) {
  m_position = ownPosition(now);
  if (m_device) send("stop WavFile");
  m_ownMode = Mode::Stopped;
}

SessionSound::Mode SessionSound::mode() {
  if (!m_device) return m_ownMode;
  const MediaReply reply = m_port.send("status WavFile mode");
  if (!reply.ok()) {
    takeOver();
    return m_ownMode;
  }
  if (reply.text.starts_with("stopped")) return Mode::Stopped;
  return reply.text.starts_with("paused") ? Mode::Paused : Mode::Playing;
}

std::int64_t SessionSound::position(Instant now) {
  if (!m_device) return ownPosition(now);
  const auto position = m_port.send("status WavFile position").number();
  if (!position) {
    takeOver();
    return ownPosition(now);
  }
  m_position = *position;
  m_ownSince = now;
  return m_position;
}

bool SessionSound::send(const std::string& command) {
  return m_port.send(command).ok();
}

/// From here on the session's own clock goes on where the device stood last.
void SessionSound::takeOver() {
  m_device = false;
}

std::int64_t SessionSound::ownPosition(Instant now) const {
  if (m_ownMode != Mode::Playing || m_device) return m_position;
  const auto elapsed = std::chrono::duration<double>(now - m_ownSince).count();
  return m_position + static_cast<std::int64_t>(elapsed * m_units);
}

}  // namespace qv3
