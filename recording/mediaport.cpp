#include "recording/mediaport.h"

#include <charconv>

namespace qv3 {

std::optional<std::int64_t> MediaReply::number() const {
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, value);
  if (!ok() || read.ec != std::errc{} || read.ptr != end) return std::nullopt;
  return value;
}

}  // namespace qv3
