#include "recording/sound/playbackrun.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qv3 {
namespace {

/// From opening a stream to hearing its first frame, as measured with a quiet server.
constexpr double kStartDelay = 0.020;

/// A gap between sound and clock that the clock may close by itself. Moving the sound clicks, so
/// less is borne at the first alignment, right after the start, than later.
constexpr double kBorneAtStart = 0.006;
constexpr double kBorne = 0.020;

/// The server's last report may be early; the stream stays until the end was surely heard.
constexpr double kTail = 0.3;

}  // namespace

PlaybackRun::PlaybackRun(std::shared_ptr<SoundReader> reader, std::int64_t from,
                         std::optional<std::int64_t> end, SoundTime now)
    : m_reader(std::move(reader)),
      m_rate(m_reader->framesPerSecond()),
      m_clock(now, static_cast<double>(from) / m_rate, DisciplinedClock::Corrects::Offset),
      m_lastPosition(from),
      m_end(end) {}

std::int64_t PlaybackRun::clockFrame(double seconds) const {
  constexpr double kMost = 9e18;  // the timing track may be started at any number
  return static_cast<std::int64_t>(std::floor(std::min(seconds * m_rate, kMost)));
}

std::int64_t PlaybackRun::position(SoundTime now) {
  const std::int64_t frame = clockFrame(m_clock.at(now));
  const std::lock_guard lock(m_mutex);
  m_lastPosition = std::max(m_lastPosition, m_end ? std::min(frame, *m_end) : frame);
  return m_lastPosition;
}

bool PlaybackRun::atEnd(SoundTime now) {
  const std::int64_t frame = position(now);
  const std::lock_guard lock(m_mutex);
  return m_end && frame >= *m_end;
}

void PlaybackRun::setEnd(std::optional<std::int64_t> end) {
  const std::lock_guard lock(m_mutex);
  m_end = end;
}

std::optional<std::int64_t> PlaybackRun::end() const {
  const std::lock_guard lock(m_mutex);
  return m_end;
}

StreamFormat PlaybackRun::format() const {
  return {m_rate, m_reader->channels()};
}

bool PlaybackRun::wanted(SoundTime now) {
  const std::optional<std::int64_t> last = end();
  return !m_cancelled && (!last || clockFrame(m_clock.at(now) - kTail) < *last);
}

void PlaybackRun::streamStarted() {
  m_started = false;
  m_aligned = false;
  m_written = 0;
  m_silence = 0;
  m_stretches.clear();
  m_offset = {};
}

void PlaybackRun::fill(SoundTime now, std::span<std::int16_t> to) {
  if (m_started) {
    align(now);
  } else {
    m_started = true;
    moveSound(clockFrame(m_clock.at(now) + kStartDelay));
  }
  const std::size_t channels = m_reader->channels();
  const auto frames = static_cast<std::int64_t>(to.size() / channels);
  const std::int64_t silent = std::min(m_silence, frames);
  const auto sound = to.subspan(static_cast<std::size_t>(silent) * channels);
  std::fill(to.begin(), to.end() - static_cast<std::ptrdiff_t>(sound.size()), std::int16_t{0});
  m_silence -= silent;
  m_written += silent;
  if (!sound.empty()) fillSound(sound);
}

void PlaybackRun::fillSound(std::span<std::int16_t> to) {
  if (m_stretches.empty() || m_stretches.back().silent) {
    m_stretches.push_back({m_written, m_next, false});
  }
  const auto frames = static_cast<std::int64_t>(to.size() / m_reader->channels());
  m_reader->read(m_next, to);
  const std::optional<std::int64_t> last = end();
  if (last && m_next + frames > *last) {
    const std::int64_t kept = std::max<std::int64_t>(*last - m_next, 0) * m_reader->channels();
    std::fill(to.begin() + static_cast<std::ptrdiff_t>(kept), to.end(), std::int16_t{0});
  }
  m_next += frames;
  m_written += frames;
}

/// What is written now is heard after what was written before. Is that where the clock will be?
void PlaybackRun::align(SoundTime now) {
  const std::optional<double> stream = m_offset.heard(now);
  if (!stream || m_silence > 0) return;
  const double delay = static_cast<double>(m_written) / m_rate - *stream;
  if (delay < 0) return;
  const double desired = m_clock.at(now) + delay;
  const double gap = static_cast<double>(m_next) / m_rate - desired;
  const double borne = m_aligned ? kBorne : kBorneAtStart;
  m_aligned = true;
  if (std::abs(gap) > borne) moveSound(clockFrame(desired));
}

void PlaybackRun::moveSound(std::int64_t desired) {
  if (!m_stretches.empty() && m_next > desired) {
    // Sound that is early waits; nothing is heard twice.
    m_silence = m_next - desired;
    m_stretches.push_back({m_written, m_next, true});
    return;
  }
  m_next = desired;
  m_stretches.push_back({m_written, m_next, false});
}

void PlaybackRun::heard(SoundTime now, std::chrono::microseconds stream) {
  if (stream.count() <= 0) return;
  m_offset.observe(now, std::chrono::duration<double>(stream).count());
  const std::optional<double> smooth = m_offset.heard(now);
  if (!smooth) return;
  const double frame = *smooth * m_rate;
  const Stretch* stretch = stretchAt(frame);
  if (!stretch || stretch->silent || frame > static_cast<double>(m_written)) return;
  const double sound =
      (static_cast<double>(stretch->sound) + frame - static_cast<double>(stretch->stream)) / m_rate;
  const double error = sound - m_clock.at(now);
  if (std::abs(error) <= 2 * kBorne) m_clock.observe(now, error);
}

const PlaybackRun::Stretch* PlaybackRun::stretchAt(double streamFrame) {
  while (m_stretches.size() > 1 && static_cast<double>(m_stretches[1].stream) <= streamFrame) {
    m_stretches.pop_front();
  }
  const bool begun =
      !m_stretches.empty() && static_cast<double>(m_stretches.front().stream) <= streamFrame;
  return begun ? &m_stretches.front() : nullptr;
}

}  // namespace qv3
