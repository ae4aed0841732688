#include "recording/sound/streamoffset.h"

#include <cmath>
#include <numeric>

namespace qv3 {
namespace {

constexpr std::size_t kReports = 6;
constexpr double kSameReport = 0.0003;  ///< between two reports the offset hardly moves
constexpr double kAway = 0.025;
constexpr SoundTime kBelieved{200'000};

}  // namespace

void StreamOffset::observe(SoundTime now, double stream) {
  const double offset = stream - std::chrono::duration<double>(now).count();
  if (m_reports.empty()) return add(offset);
  if (std::abs(offset - m_mean) <= kAway) {
    m_awaySince.reset();
    if (std::abs(offset - m_reports.back()) > kSameReport) add(offset);
    return;
  }
  if (!m_awaySince) m_awaySince = now;
  if (now - *m_awaySince < kBelieved) return;
  m_awaySince.reset();
  m_reports.clear();
  add(offset);
}

std::optional<double> StreamOffset::heard(SoundTime now) const {
  if (m_reports.empty()) return std::nullopt;
  return std::chrono::duration<double>(now).count() + m_mean;
}

void StreamOffset::add(double offset) {
  m_reports.push_back(offset);
  if (m_reports.size() > kReports) m_reports.pop_front();
  m_mean = std::accumulate(m_reports.begin(), m_reports.end(), 0.0) /
           static_cast<double>(m_reports.size());
}

}  // namespace qv3
