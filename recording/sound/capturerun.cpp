#include "recording/sound/capturerun.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "recording/sound/pcmreader.h"

namespace qv3 {
namespace {

/// From the room to the arrival, as measured with fragments of 20 ms; delays only add to it.
constexpr double kDelivery = 0.005;

/// Fragments come up to this much late without anything being lost.
constexpr double kBorne = 0.040;

/// A stall may be made good by a burst; so long it is waited for. The place of a new stream is
/// taken from its most punctual fragment in that time.
constexpr SoundTime kDecision{200'000};

/// After `stop`, sound that was in the room before it is taken this long.
constexpr SoundTime kDrain{200'000};

constexpr SoundTime kWindow{500'000};

std::int64_t framesIn(const Spool& spool, std::uint64_t bytes) {
  return static_cast<std::int64_t>(bytes / spool.format().blockSize());
}

}  // namespace

CaptureRun::CaptureRun(std::shared_ptr<Spool> spool, SoundTime now)
    : m_spool(std::move(spool)),
      m_format(m_spool->format()),
      m_first(framesIn(*m_spool, m_spool->end())),
      m_clock(now, 0, DisciplinedClock::Corrects::Drift),
      m_lastPosition(m_first),
      m_next(m_first),
      m_written(m_first) {}

std::int64_t CaptureRun::position(SoundTime now) {
  const double frames = m_clock.at(now) * m_format.samplesPerSecond;
  const std::lock_guard lock(m_ownerMutex);
  m_lastPosition = std::max(m_lastPosition, m_first + static_cast<std::int64_t>(frames));
  return m_lastPosition;
}

std::int64_t CaptureRun::stop(SoundTime now) {
  const std::int64_t end = position(now);
  const std::lock_guard lock(m_mutex);
  m_end = end;
  m_closesAt = now + kDrain;
  place();
  m_spool->extendTo(static_cast<std::uint64_t>(end) * m_format.blockSize());
  return end;
}

void CaptureRun::close() {
  const std::lock_guard lock(m_mutex);
  m_closed = true;
}

StreamFormat CaptureRun::format() const {
  return {m_format.samplesPerSecond, m_format.channels};
}

bool CaptureRun::wanted(SoundTime now) {
  const std::lock_guard lock(m_mutex);
  return !m_closed && (!m_end || (now < m_closesAt && m_next < *m_end));
}

void CaptureRun::streamStarted() {
  const std::lock_guard lock(m_mutex);
  place();
  m_placed = false;
  m_bestGap.reset();
}

/// Seconds by which a frame that has just arrived would be ahead of its time at `end`.
double CaptureRun::gapAt(SoundTime now, std::int64_t end) const {
  const double inRoom = m_clock.at(now) - kDelivery;
  return static_cast<double>(end - m_first) / m_format.samplesPerSecond - inRoom;
}

void CaptureRun::captured(SoundTime now, std::span<const std::int16_t> frames) {
  const std::lock_guard lock(m_mutex);
  if (m_closed || frames.empty() || (m_end && now >= m_closesAt)) return;
  const auto held = static_cast<std::int64_t>(m_held.size() / m_format.channels);
  const auto count = static_cast<std::int64_t>(frames.size() / m_format.channels);
  const double gap = gapAt(now, m_next + held + count);
  if (m_placed && std::abs(gap) <= kBorne) {
    m_heldGap = 0;
    place();
    write(frames);
    discipline(now, gap);
    return;
  }
  hold(now, gap, frames);
}

void CaptureRun::hold(SoundTime now, double gap, std::span<const std::int16_t> frames) {
  if (m_held.empty()) {
    m_heldSince = now;
    m_heldGap = gap;
  }
  m_heldGap = std::max(m_heldGap, gap);
  m_held.insert(m_held.end(), frames.begin(), frames.end());
  if (now - m_heldSince >= kDecision || m_end) place();
}

/// What was held gets its place, moved by the gap of its most punctual fragment.
void CaptureRun::place() {
  if (m_held.empty()) return;
  m_next -= std::llround(m_heldGap * m_format.samplesPerSecond);
  m_placed = true;
  m_bestGap.reset();
  m_heldGap = 0;
  const std::vector<std::int16_t> held = std::exchange(m_held, {});
  write(held);
}

void CaptureRun::write(std::span<const std::int16_t> frames) {
  const std::size_t channels = m_format.channels;
  const auto count = static_cast<std::int64_t>(frames.size() / channels);
  const std::int64_t begin = std::max(m_next, m_written);
  const std::int64_t last = m_end ? std::min(m_next + count, *m_end) : m_next + count;
  if (begin < last) {
    std::vector<std::uint8_t> bytes;
    const auto kept = frames.subspan(static_cast<std::size_t>(begin - m_next) * channels,
                                     static_cast<std::size_t>(last - begin) * channels);
    appendPcm(kept, m_format.bitsPerSample, bytes);
    m_spool->write(static_cast<std::uint64_t>(begin) * m_format.blockSize(), bytes);
    m_written = last;
  }
  m_next += count;
}

/// The most punctual fragment of a window tells how the two clocks stand; the others were late.
void CaptureRun::discipline(SoundTime now, double gap) {
  if (!m_bestGap) m_windowSince = now;
  m_bestGap = std::max(gap, m_bestGap.value_or(gap));
  if (now - m_windowSince < kWindow) return;
  m_clock.observe(now, *m_bestGap);
  m_bestGap.reset();
}

}  // namespace qv3
