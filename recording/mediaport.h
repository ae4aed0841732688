#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qv3 {

/// The answer to a command string; the text is empty on any code but 0.
struct MediaReply {
  int code = 0;
  std::string text;

  bool ok() const { return code == 0; }

  /// The answer as a whole number; nothing if it is none, or no success.
  std::optional<std::int64_t> number() const;
};

/// The sound device under the alias "WavFile", spoken to in command strings. No call waits for
/// sound.
class MediaPort {
 public:
  virtual ~MediaPort() = default;

  virtual MediaReply send(std::string_view command) = 0;

  /// Empty for code 0 and for codes without a text.
  virtual std::string errorText(int code) = 0;
};

}  // namespace qv3
