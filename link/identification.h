#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace qv3 {

/// What a meter says of itself.
struct MeterIdentity {
  std::string MeterVersion;  ///< two-character model code
  std::string MeterModel;    ///< "QV" and the model code
  std::string MeterField2;
  std::string MeterField3;
};

/// Collects a reply to "V" up to its carriage return. Only the characters ',' to 'Z' are kept, and
/// of those only the first 255, so that a babbling line cannot fill the memory.
class ReplyCollector {
 public:
  static constexpr std::size_t kLimit = 255;

  /// True once the carriage return has come; what follows it is not looked at.
  bool add(std::string_view characters);

  const std::string& reply() const { return m_reply; }

 private:
  std::string m_reply;
  bool m_complete = false;
};

/// Takes over what a reply says. A field whose comma is missing stays as it was. False, with
/// nothing changed, if the reply is not a meter's.
bool takeReply(std::string_view reply, MeterIdentity& identity);

}  // namespace qv3
