#include "recording/player.h"

#include <algorithm>

#include "recording/naming.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kSkipPause{500};  // the sound resumes once the user stops pressing
constexpr milliseconds kLagLamp{100};
constexpr double kLate = 10;  // ms behind the sound: the next record follows at once
constexpr std::size_t kRecordsPerSecond = 50;

}  // namespace

void Player::load(const RecordBuffer& records, std::int32_t startSeconds) {
  m_records = &records;
  m_startSeconds = startSeconds;
  m_state = State::Stopped;
  m_pending.reset();
  m_skipDue.reset();
  wholeRange();
}

std::int32_t Player::totalTime() const {
  return m_records == nullptr || m_records->empty() ? 0 : timeOf(m_records->count());
}

void Player::start(Instant now) {
  if (m_records == nullptr || m_records->empty()) return;
  m_skipDue.reset();
  m_lagSince.reset();
  seekToRangeStart(now);
  m_state = State::Playing;
}

/// Sound, records and displays at the begin of the range, the sound playing.
void Player::seekToRangeStart(Instant now) {
  m_position = m_sound.positionOf(timeOf(m_range.start));
  m_sound.seek(m_position, now);
  m_displayedSecond = m_position / m_sound.unitsPerSecond();
  m_view.showPlayTime(m_displayedSecond);
  m_clockMinute.reset();
  showClock(m_displayedSecond);
  m_position = m_sound.position(now);
  m_sound.play(now);
  m_index = m_range.start;
  m_pending.reset();
  m_firstRecord = true;
}

void Player::pause(Instant now) {
  if (m_state != State::Playing) return;
  m_sound.pause(now);
  m_pending.reset();
  m_state = State::Paused;
}

void Player::resume(Instant now) {
  if (m_state != State::Paused) return;
  if (m_skipDue) m_position = m_sound.positionOf(timeOf(m_index));
  m_skipDue.reset();
  m_sound.playFrom(m_position, now);
  m_state = State::Playing;
}

void Player::stop(Instant now) {
  if (m_state == State::Stopped) return;
  m_state = State::Stopped;
  m_pending.reset();
  m_skipDue.reset();
  m_sound.stop(now);
}

void Player::poll(Instant now, int lagLimit, bool loop) {
  if (m_skipDue && now >= *m_skipDue) resumeAfterSkip(now);
  if (m_state != State::Playing) return;
  m_catchUp = 0;
  do {
    if (!takeNext(now, loop) || !soundReached(now)) return;
    ++m_index;
    noteLag(now, lagLimit);
    if (soundTime() - m_pending->Time < kLate) break;
    m_pending.reset();  // late: shown only if nothing later is due as well
  } while (true);
  endLag(now);
  showSecond();
  const SampleRecord record = *m_pending;
  m_pending.reset();
  m_view.showRecord(record);
}

/// Has the next record waiting; false if the playback ended or started its loop again instead.
bool Player::takeNext(Instant now, bool loop) {
  if (m_pending) return true;
  if (m_firstRecord) {
    m_firstRecord = false;
    m_view.showPlayTime(m_position / m_sound.unitsPerSecond());
    m_view.firstRecord();
  }
  showBar();
  const bool over = m_index >= m_records->count() || m_index > m_range.end;
  // A session of one record is over before it shows anything, and would restart with every poll.
  if (over && loop && m_records->count() > 1) {
    restartLoop(now);
  } else if (over) {
    m_view.playedToEnd();
  } else {
    m_pending = m_records->at(m_index);
  }
  return m_pending.has_value();
}

/// Whether the sound has come to the waiting record, or will come no further.
bool Player::soundReached(Instant now) {
  const SessionSound::Mode mode = m_sound.mode();
  if (mode == SessionSound::Mode::Paused) {
    m_pending.reset();
    return false;
  }
  if (mode == SessionSound::Mode::Stopped) m_index = m_records->count();
  m_position = m_sound.position(now);
  return mode == SessionSound::Mode::Stopped || soundTime() >= m_pending->Time;
}

double Player::soundTime() const {
  return static_cast<double>(m_position) * 1000 / m_sound.unitsPerSecond();
}

void Player::noteLag(Instant now, int lagLimit) {
  if (++m_catchUp <= lagLimit) return;
  if (!m_view.lagLampLit()) m_view.setLagLamp(true);
  m_lagSince = now;
}

void Player::endLag(Instant now) {
  if (!m_lagSince || now - *m_lagSince <= kLagLamp) return;
  m_lagSince.reset();
  if (m_view.lagLampLit()) m_view.setLagLamp(false);
}

void Player::showSecond() {
  const std::int64_t second = m_position / m_sound.unitsPerSecond();
  if (second == m_displayedSecond) return;
  m_displayedSecond = second;
  m_view.showPlayTime(second);
  showClock(second);
}

/// The clock tells minutes: with every new one, be it reached or jumped to.
void Player::showClock(std::int64_t second) {
  const std::int64_t clock = second + m_startSeconds;
  if (m_startSeconds == 0 || m_clockMinute == clock / 60) return;
  m_clockMinute = clock / 60;
  m_view.showSessionClock(clock);
}

void Player::restartLoop(Instant now) {
  seekToRangeStart(now);
  m_view.loopRestarted();
}

void Player::skip(bool forward, Instant now) {
  if (m_state == State::Stopped) return;
  if (!m_skipDue && m_state == State::Playing) m_sound.pause(now);
  m_skipDue = now + kSkipPause;
  const std::size_t step =
      static_cast<std::size_t>(skipSeconds(totalTime() / 1000)) * kRecordsPerSecond;
  const std::size_t first = m_range.start;
  if (forward) {
    m_index += step;
    const std::size_t last = m_range.end > kRecordsPerSecond ? m_range.end - kRecordsPerSecond : 1;
    if (m_index > m_range.end) m_index = std::max(last, first);
  } else {
    m_index = m_index > first + step ? m_index - step : first;
  }
  m_pending.reset();
  m_view.jumped();
  m_view.showPlayTime(timeOf(m_index) / 1000);
  showBar();
}

void Player::resumeAfterSkip(Instant now) {
  m_skipDue.reset();
  m_position = m_sound.positionOf(timeOf(m_index));
  if (m_state == State::Playing) m_sound.playFrom(m_position, now);
}

void Player::seekTo(int x, Instant now) {
  if (m_state == State::Stopped || x < m_range.startMarker || x > m_range.endMarker) return;
  m_index = recordAt(x);
  m_pending.reset();
  m_skipDue.reset();
  m_position = m_sound.positionOf(timeOf(m_index));
  const std::int64_t second = m_position / m_sound.unitsPerSecond();
  m_view.showPlayTime(second);
  showClock(second);
  m_firstRecord = true;
  if (m_state == State::Playing) {
    m_sound.playFrom(m_position, now);
  } else {
    showBar();
  }
}

void Player::setRange(int fromX, int toX) {
  if (m_state != State::Stopped || m_records == nullptr || fromX == toX) return;
  const auto [low, high] = std::minmax(
      {std::clamp(fromX, 0, PlayRange::kBarWidth), std::clamp(toX, 0, PlayRange::kBarWidth)});
  const PlayRange range{recordAt(low), recordAt(high), low, high};
  if (range.end - range.start + 1 < PlayRange::kShortest) {
    wholeRange();
    return;
  }
  m_range = range;
  m_index = m_range.start;
}

void Player::wholeRange() {
  m_range = {1, m_records == nullptr ? 0 : m_records->count(), 0, PlayRange::kBarWidth};
  m_index = 1;
}

int Player::shortestRange() const {
  constexpr std::size_t kWidth = PlayRange::kBarWidth;
  if (m_records == nullptr || m_records->empty()) return PlayRange::kBarWidth;
  const std::size_t places =
      (PlayRange::kShortest * kWidth + m_records->count() - 1) / m_records->count();
  return static_cast<int>(std::min(places, kWidth));
}

std::size_t Player::recordAt(int x) const {
  const std::size_t number =
      m_records->count() * static_cast<std::size_t>(std::max(x, 0)) / PlayRange::kBarWidth;
  return std::clamp<std::size_t>(number, 1, m_records->count());
}

void Player::showBar() {
  const double place = static_cast<double>(m_index) / static_cast<double>(m_records->count());
  m_view.showProgress(m_range, place * PlayRange::kBarWidth);
}

}  // namespace qv3
