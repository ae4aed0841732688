#include "instrument/deadlines.h"

namespace qv3 {
namespace {

using std::chrono::milliseconds;

constexpr std::array<milliseconds, kTimers> kPeriods = {milliseconds{300}, milliseconds{400},
                                                        milliseconds{1000}, milliseconds{1500},
                                                        milliseconds{1500}};

}  // namespace

void Deadlines::start(Timer timer, Instant now) {
  at(timer) = now + kPeriods[static_cast<std::size_t>(timer)];
}

void Deadlines::startIfStopped(Timer timer, Instant now) {
  if (!running(timer)) start(timer, now);
}

std::optional<Instant> Deadlines::next() const {
  std::optional<Instant> earliest;
  for (const auto& due : m_due) {
    if (due && (!earliest || *due < *earliest)) earliest = due;
  }
  return earliest;
}

std::optional<Deadlines::Due> Deadlines::takeDue(Instant now) {
  const auto earliest = next();
  if (!earliest || *earliest > now) return std::nullopt;
  for (std::size_t index = 0; index < kTimers; ++index) {
    if (m_due[index] != earliest) continue;
    m_due[index].reset();
    return Due{static_cast<Timer>(index), *earliest};
  }
  return std::nullopt;
}

}  // namespace qv3
