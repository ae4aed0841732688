#include "link/identification.h"

namespace qv3 {
namespace {

constexpr std::string_view kReplyStart = "V,QV";
constexpr std::size_t kEcho = 2;  // the "V," before what the meter says of itself
constexpr std::size_t kCodeAt = 2;
constexpr std::size_t kCodeLength = 2;
constexpr char kFirstKept = ',';
constexpr char kLastKept = 'Z';

}  // namespace

bool ReplyCollector::add(std::string_view characters) {
  for (const char c : characters) {
    if (m_complete) break;
    if (c == '\r') {
      m_complete = true;
    } else if (c >= kFirstKept && c <= kLastKept && m_reply.size() < kLimit) {
      m_reply += c;
    }
  }
  return m_complete;
}

bool takeReply(std::string_view reply, MeterIdentity& identity) {
  if (!reply.starts_with(kReplyStart)) return false;
  const std::string_view rest = reply.substr(kEcho);
  identity.MeterVersion = rest.substr(kCodeAt, kCodeLength);

  const auto first = rest.find(',');
  if (first == std::string_view::npos) return true;
  identity.MeterModel = rest.substr(0, first);

  const auto second = rest.find(',', first + 1);
  if (second == std::string_view::npos) return true;
  identity.MeterField2 = rest.substr(first + 1, second - first - 1);
  identity.MeterField3 = rest.substr(second + 1);
  return true;
}

}  // namespace qv3
